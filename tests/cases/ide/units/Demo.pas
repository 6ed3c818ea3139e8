mission Demo;
const MaxWave = 3, ShipCount = 2;
var kills = 0, shipsLeft;
include "helpers";
function Explode(x, y); external;
function Tick; forward;

// Adds its arguments.
function Attack(ship, target);
begin
  result := ship + target;
end;

function Tick;
var a;
begin
  a := Attack(kills, Boost(a));
end;

object Alpha (Alpha1) AS ship x: 0; y: 0; z: 0; end;
objective FirstWave hidden: 0; type: 1; text: 7; status: 0; counter: 0; end;
