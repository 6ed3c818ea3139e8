unit Helpers;

var shipBonus;

// Doubles.
function Boost(amount);
begin
  result := amount * 2;
end;
