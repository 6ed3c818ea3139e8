unit sample;

// A small unit to watch the scanner at work: velkorc tokens examples/sample.pas
const
  MaxShips = 4,
  Mask = %1010,
  Colour = $FF8000;

var
  kills = 0;

/* Counts down the ships
   that are still alive. */
function CountDown(n);
begin
  while (n > 0) do
    dec(n);
  result := n;
end;
