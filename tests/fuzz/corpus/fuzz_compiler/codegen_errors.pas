unit Broken;
function f(a, ; begin a := (((1 + ; if a then while ( do inc( 3 mod 4 xor 5; break
object O ( AS BOAT x: ; objective o hidden type
function g; begin end; function g; begin end;
