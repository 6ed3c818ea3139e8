mission escort;

// The second mission: take the hauler Mira from the station to the jump point, while a raider carrier
// sends its fighters after her. Compiles into escort.mis and escort.iff.

include common;
#STRINGS campaign;
#SECTOR: "outpost.sec";

#NAME: Campaign["Escort the Hauler"];
#MAINPROC: "EscortMain";
#GFPROC: "EscortFlow";

// A mission may change what common.pas set: here the player also sees the hangar between missions.
#SETROOMS("deck.rom", "ready.rom", "hangar.rom");
#SETKILLBOARD(1, 2, 5);

external Progress, Score, WingmanLost;

const
  SafeDistance = 4000,   // how close the raiders may come to the hauler
  JumpRange = 1500;

var
  HaulerSafe = 1,
  Launched = 0;

objective KeepHauler
  hidden: 0;
  type: 3;
  text: Campaign["Keep the hauler alive"];
  status: ObjStatusOpen;
  counter: 0;
end;

objective ReachGate
  hidden: 0;
  type: 1;
  text: Campaign["Bring the hauler*"];
  status: ObjStatusOpen;
  counter: 0;
end;

objective SinkCarrier
  hidden: 1;
  type: 2;
  text: Campaign["Destroy the raider carrier"];
  status: ObjStatusOpen;
  counter: 0;
end;

object Alpha1 (Alpha1) AS PLAYER
  OBJ: "fighter_light";
  x: 300; y: 100; z: 900;
  NAME: Campaign["Alpha One"];
  PILOT: 1;
end;

object Alpha2 (Alpha2) AS SHIP
  OBJ: "fighter_light";
  x: -300; y: 100; z: 900;
  NAME: Campaign["Alpha Two"];
  PILOT: 2;
  COLOR: TeamAllied, 0.2, 0.6, 1.0;
end;

// A capital ship: EVENT_0 names the program the game runs when she is hit.
object Mira (Mira) AS CAPSHIP
  OBJ: "hauler";
  x: 0; y: -400; z: 1500;
  NAME: Campaign["Hauler Mira"];
  PILOT: 5;
  MAIN: "MiraMain";
  DEATH: "MiraDown";
  EVENT_0: "MiraHit";
  ACTIONSPHERE: 6000;
end;

// Her cargo, towed along; the type text of a CARGO object is fixed, so it takes no OBJ line.
object Pod (Pod) AS CARGO
  x: 0; y: -400; z: 1300;
  RADIUS: 40.0;
end;

object Carrier (Carrier) AS CAPSHIP
  OBJ: "carrier_raider";
  x: 12000; y: 3000; z: 30000;
  NAME: Campaign["Raider Carrier"];
  DEATH: "CarrierDown";
  COLOR: TeamHostile, 0.9, 0.2, 0.1;
end;

object Raider1 (Raider1) AS SHIP
  OBJ: "fighter_raider";
  x: 12300; y: 3100; z: 29500;
  NAME: Campaign["Raider"];
end;

object Raider2 (Raider2) AS SHIP
  OBJ: "fighter_raider";
  x: 11700; y: 2900; z: 29500;
  NAME: Campaign["Raider"];
end;

// Wreckage along the route, to fly around.
object Wreckage (Wreckage) AS DEBRSFLD
  x: 4000; y: 0; z: 22000;
  RADIUS: 2500.0;
end;

// --- programs

function EscortMain;
var leg = 1;
begin
  // A wingman lost in the patrol does not fly again.
  if (WingmanLost = 1) then
    Remove(Alpha2)
  else
    OrderFollow(Alpha2, Alpha1);
  ShowTextFrom(Campaign["Mira here.*"], Mira);
  OrderFollow(Pod, Mira);
  // The route has two legs: past the second beacon, then on to the gate.
  while (leg < 3) do
  begin
    if (leg = 1) then
      FlyTo(Mira, Beacon2, 1500)
    else
      FlyTo(Mira, Gate, JumpRange);
    inc(leg);
  end;
  SetObjective(ReachGate, ObjStatusDone);
  ShowText(Campaign["Mira has jumped out*"]);
  Remove(Mira);
  Remove(Pod);
  EndMission(OutcomeWon);
end;

function MiraMain;
begin
  OrderHold(Mira);
end;

// Sends the carrier's fighters against the hauler, one attack run after the other.
function CarrierLaunch;
var fighter;
begin
  ShowText(Campaign["A carrier is*"]);
  SetObjective(SinkCarrier, ObjStatusOpen);
  for fighter := 1 to AttackRuns do
  begin
    Activate(@Raider1);
    Activate(@Raider2);
    OrderAttack(Raider1, Mira);
    OrderAttack(Raider2, Mira);
    // Wait for this run to end before the next one starts.
    if (WaitForKill(Raider1, 60) AND WaitForKill(Raider2, 30)) then
      inc(Score, 20);
  end;
end;

// Hit for the first time: the carrier starts launching.
function MiraHit;
begin
  if (Launched = 0) then
  begin
    Launched := 1;
    PlaySound(@alarm);
    ShowText(Campaign["Mira is under fire!"]);
    CarrierLaunch;
  end;
end;

function MiraDown;
begin
  HaulerSafe := 0;
  SetObjective(KeepHauler, ObjStatusFailed);
  ShowText(Campaign["We lost the hauler.*"]);
  EndMission(OutcomeLost);
end;

function CarrierDown;
begin
  SetObjective(SinkCarrier, ObjStatusDone);
  inc(Score, 50);
end;

// Watches the raiders: the closest one to the hauler decides whether she is in danger.
function EscortFlow;
var nearest, d;
begin
  until (HaulerSafe = 0) do
  begin
    nearest := Distance(Raider1, Mira);
    d := Distance(Raider2, Mira);
    if (d < nearest) then
      nearest := d;
    if (nearest < SafeDistance) then
      ShowTextFrom(Campaign["Mira is under fire!"], Alpha2);
    WaitSeconds(10);
  end;
end;
