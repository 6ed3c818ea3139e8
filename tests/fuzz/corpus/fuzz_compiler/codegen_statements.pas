mission Seed;
var total = 2;
const Step = $10, Mask = %101;
function Wait(t); external;
function Helper(a, b); forward;
function Main;
var i, n = 3;
begin
  for i := 1 to n do inc(total, i * Step);
  while (total > 0) do begin dec(total); if (total = 5) then break; end;
  until (NOT total < 2) do total := total - -1;
  if (total <> 4) then Wait(@total) else Helper(1 2);
  result := Helper(total, (1 + (2 * (3 - 4))));
end;
function Helper(a, b); begin result := a / b and a or b end;
