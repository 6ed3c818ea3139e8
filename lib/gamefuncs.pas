unit GameFuncs;

// The game functions a mission script can call. The game itself implements them: a unit only declares
// each one with "external", naming its parameters, and then calls it like any other function:
//
//   include gamefuncs;
//   ...
//   OrderAttack(Wing1, Raider1);
//
// A call passes its arguments in registers counted down from v15 (first argument in v15, the second in
// v14, ...) and becomes one instruction named after the function; the result, if any, comes back in v0.
// The instruction word is the checksum of the name exactly as written below, so keep the spelling.
// Every function returns a value, so a call may stand in an expression as well as on its own.

// --- time
function GameTime; external;                  // seconds since the mission started
function WaitSeconds(seconds); external;      // pause the calling program

// --- messages and sound
function ShowText(textNumber); external;      // a line of the string file on the screen
function ShowTextFrom(textNumber, speaker); external; // the same, spoken by an object
function PlaySound(sound); external;          // by name, with "@": PlaySound(@alarm)

// --- objects
function IsAlive(obj); external;              // non-zero while the object exists and is not destroyed
function Distance(a, b); external;            // between two objects, in metres
function Activate(obj); external;             // bring a prepared object into the mission
function Remove(obj); external;
function SetTeam(obj, team); external;

// --- orders for ships
function OrderAttack(ship, target); external;
function OrderFollow(ship, leader); external;
function OrderFlyTo(ship, nav); external;
function OrderHold(ship); external;

// --- the player's view
function CameraWatch(camera, obj); external;
function CameraOff; external;

// --- objectives and the mission's end
function SetObjective(number, status); external; // status: one of the ObjStatus... values
function ObjectiveStatus(number); external;
function EndMission(outcome); external;          // outcome: one of the Outcome... values
function Random(limit); external;                // 0 to limit - 1

// --- the campaign, for a series' main program
function StartMission(number); external;         // plays a mission, gives its outcome
function EndSeries(outcome); external;
