unit Literals;

/* Numbers in every base the scanner reads,
   inside a block comment that spans lines. */
const
  Mask = $1F;      // hexadecimal
  Bits = %1010;    // binary
  Count = 42;
  Ratio = 0.25;
