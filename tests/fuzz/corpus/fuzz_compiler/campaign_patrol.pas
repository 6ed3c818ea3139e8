mission patrol;

// The first mission: fly the patrol route past the three beacons of the Outpost sector with a wingman,
// and deal with the raiders waiting at the second one.
//
// A mission unit compiles into two files: patrol.mis (the sector, the objects, the global variables and
// the programs) and patrol.iff (the mission's name, objectives, and the kill board).

// The shared part of every mission: game functions, constants, helper functions and the sector.
include common;

// The string file: lines are referred to by their text, Campaign[ "..." ] (see campaign_eng.txt).
#STRINGS campaign;

// The sector the mission plays in (see outpost.pas).
#SECTOR: "outpost.sec";

// The mission's name, as a line of the string file.
#NAME: Campaign["Patrol the Outer Beacons"];

// The programs the game starts with the mission: the main program and the flow program that watches the
// objectives. (Both settings are shown as hints when the mission compiles, as a reminder.)
#MAINPROC: "PatrolMain";
#GFPROC: "PatrolFlow";

// The pilots listed on the kill board after the mission.
#SETKILLBOARD(1, 2);

// Variables of the series (frontier.pas), shared by every mission of the campaign.
external Progress, Score, WingmanLost;

// The mission's own variables; they start at the value given (0 when none is).
var
  BeaconsReached = 0,
  RaidersDown = 0,
  WaveActive;

// The objectives shown to the player. Each takes five fields in this order; the text is a line of the
// string file. In the programs an objective's name stands for its number (0, 1, 2 in the order declared).
objective ReachBeacons
  hidden: 0;
  type: 1;
  text: Campaign["Fly through all three beacons"];
  status: ObjStatusOpen;
  counter: 3;
end;

objective DestroyRaiders
  hidden: 0;
  type: 2;
  text: Campaign["Destroy the raiders"];
  status: ObjStatusOpen;
  counter: 0;
end;

// A hidden objective: it shows up only once a program changes it.
objective KeepWingman
  hidden: 1;
  type: 3;
  text: Campaign["Keep Alpha Two*"];    // "*": the first line that contains this text
  status: ObjStatusOpen;
  counter: 0;
end;

// The ships. The player's ship and the wingman start beside the station of the sector.
object Alpha1 (Alpha1) AS PLAYER
  OBJ: "fighter_light";
  x: 200; y: 0; z: 800;
  NAME: Campaign["Alpha One"];
  PILOT: 1;
end;

object Alpha2 (Alpha2) AS SHIP
  OBJ: "fighter_light";
  x: -200; y: 0; z: 800;
  NAME: Campaign["Alpha Two"];
  PILOT: 2;
  MAIN: "WingmanMain";
  DEATH: "WingmanDown";
  COLOR: TeamAllied, 0.2, 0.6, 1.0;
end;

// The raiders wait near the second beacon; each one's DEATH program counts it.
object Raider1 (Raider1) AS SHIP
  OBJ: "fighter_raider";
  x: 9500; y: 1800; z: 21000;
  NAME: Campaign["Raider"];
  DEATH: "RaiderDown";
  TARGSTR: 1;
end;

object Raider2 (Raider2) AS SHIP
  OBJ: "fighter_raider";
  x: 8700; y: 1200; z: 21400;
  NAME: Campaign["Raider"];
  DEATH: "RaiderDown";
  TARGSTR: 1;
end;

// A third raider flies only in the harder version (see #DEFINE HARD in common.pas).
#IFDEF HARD
object Raider3 (Raider3) AS SHIP
  OBJ: "fighter_raider";
  x: 9100; y: 2300; z: 21900;
  NAME: Campaign["Raider"];
  DEATH: "RaiderDown";
  TARGSTR: 1;
end;
#ENDIF

// The camera that shows the launch.
object LaunchCam (LaunchCam) AS CAMERA
  x: 0; y: 300; z: 1500;
  DIRECTION: 0, 0, -1;
end;

// --- programs

// A function is known from its declaration on. One that is called before its body stands in the unit is
// announced first with "forward"; the body must follow somewhere in the unit.
function RaiderAttack; forward;

// Runs when the mission starts.
function PatrolMain;
var beacon;
begin
  CameraWatch(LaunchCam, Alpha1);
  Radio(Campaign["Alpha One, you are*"], 2, 3);
  CameraOff;
  OrderFollow(Alpha2, Alpha1);
  // Fly the route: each beacon in turn, the player first.
  for beacon := 1 to 3 do
  begin
    if (beacon = 1) then
      FlyTo(Alpha1, Beacon1, 1000)
    else if (beacon = 2) then
      FlyTo(Alpha1, Beacon2, 1000)
    else
      FlyTo(Alpha1, Beacon3, 1000);
    inc(BeaconsReached);
    ShowText(Campaign["Beacon reached."]);
    if (beacon = 2) then
      RaiderAttack;
  end;
  SetObjective(ReachBeacons, ObjStatusDone);
end;

// The raiders turn on the patrol, making a few attack runs.
function RaiderAttack;
var wave;
begin
  WaveActive := 1;
  ShowTextFrom(Campaign["Raiders at*"], Alpha2);
  for wave := 1 to AttackRuns do
  begin
    OrderAttack(Raider1, Alpha1);
    OrderAttack(Raider2, Alpha2);
#IFDEF HARD
    OrderAttack(Raider3, Alpha1);
#ENDIF
    WaitSeconds(30 + Random(20));
  end;
  WaveActive := 0;
end;

// The DEATH program of every raider. A "static" local keeps its value from one run to the next, like a
// global variable of its own.
function RaiderDown;
var static downHere;
begin
  inc(downHere);
  inc(RaidersDown);
  inc(Score, 10);
  if (RaidersDown = RaiderCount) then
  begin
    SetObjective(DestroyRaiders, ObjStatusDone);
    ShowText(Campaign["All raiders destroyed. Well flown."]);
  end;
end;

// The wingman's own program: stay with the player.
function WingmanMain;
begin
  OrderFollow(Alpha2, Alpha1);
end;

function WingmanDown;
begin
  WingmanLost := 1;
  SetObjective(KeepWingman, ObjStatusFailed);
  ShowText(Campaign["Alpha Two is hit*"]);
end;

// The flow program: ends the mission once the route is flown and the raiders are gone, or when the
// player's ship is lost.
function PatrolFlow;
var done = 0, left;
begin
  while (done = 0) do
  begin
    WaitSeconds(5);
    // Directives may stand between statements, too.
#IFDEF HARD
    left := CountAlive(Raider1, Raider2, Raider3);
#ELSE
    left := CountAlive(Raider1, Raider2, NoObject);
#ENDIF
    if (NOT IsAlive(Alpha1)) then
    begin
      EndMission(OutcomeLost);
      done := 1;
    end
    else if (BeaconsReached = 3) then
      if (left = 0) then
      begin
        ShowText(Campaign["Patrol complete. Head home."]);
        EndMission(OutcomeWon);
        done := 1;
      end;
  end;
end;
