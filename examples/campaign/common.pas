unit Common;

// What every mission of the campaign shares. A mission takes it in with "include common;": the compiler
// reads this file as if it stood at that place, so its constants, functions and settings belong to the
// mission from there on. A file is included only once, however many units ask for it.
//
// Include names are written without ".pas". The compiler looks for them beside the unit, then in every
// folder given with -I, then in the library folder that ships with the compiler ($compiler$\lib), where
// gamefuncs.pas and constants.pas live.
include gamefuncs, constants;

// Conditional compilation. #DEFINE sets a name; #IFDEF name ... #ELSE ... #ENDIF keeps one of the two
// parts and drops the other before it is compiled. A name defined here is seen by the mission that
// includes this file. Delete the next line for the gentler version of the campaign.
#DEFINE HARD

#IFDEF HARD
const RaiderCount = 3, AttackRuns = 3;
#ELSE
const RaiderCount = 2, AttackRuns = 2;
#ENDIF

// Every mission starts from the same rooms of the carrier: "#SETROOMS" names the rooms the player walks
// through between missions. The room list and the kill board (#SETKILLBOARD) are shared with the unit
// that includes this file; the other settings (#SECTOR, #NAME, #MAINPROC, #GFPROC) are not, so every
// mission makes them itself.
#SETROOMS("deck.rom", "ready.rom");

// The sector's objects. A program names an object of its own unit directly, IsAlive(Alpha1); the objects
// of the sector are not declared in the missions, so a constant gives the game name of each. (A quoted
// name and a bare one mean the same object to the game.)
const
  Beacon1 = "Beacon1",
  Beacon2 = "Beacon2",
  Beacon3 = "Beacon3",
  Station = "OutpostStation",
  Gate = "JumpGate";

// Functions. The parameters are named in parentheses; local variables follow "var" before "begin", and
// one given a value ("= 0") starts with it each time the function runs. A function hands back a value by
// assigning it to "result". Assigning it is enough to create it, but then it takes the next free
// register, which the expression stack may be using already: declare it with the locals of any function
// that computes something before it sets result.

// Waits until the object is gone or the time runs out; gives 1 when the object was destroyed in time.
function WaitForKill(target, seconds);
var waited = 0, result;
begin
  // "while" tests its condition before each round. Conditions always stand in parentheses.
  while (IsAlive(target)) do
  begin
    WaitSeconds(1);
    inc(waited);
    // "break" leaves the loop. It reads its own ";", so it is the last statement of its block.
    if (waited > seconds) then
      break;
  end;
  result := NOT IsAlive(target);
end;

// The number of ships of a wing of up to three still flying (give NoObject for a missing one).
function CountAlive(a, b, c);
begin
  result := 0;
  if (a <> NoObject) then
    result := result + IsAlive(a);
  if (b <> NoObject) then
    result := result + IsAlive(b);
  if (c <> NoObject) then
    result := result + IsAlive(c);
end;

// Shows a run of consecutive lines of the string file, one every few seconds.
function Radio(first, count, pause);
var line;
begin
  // "for" counts up by one, from the first value to the last one included.
  for line := first to first + count - 1 do
  begin
    ShowText(line);
    WaitSeconds(pause);
  end;
end;

// Lets the ship fly on to the nav point and waits until it is closer than the distance.
function FlyTo(ship, nav, closeEnough);
begin
  OrderFlyTo(ship, nav);
  // "until" runs its body as long as the condition is false.
  until (Distance(ship, nav) < closeEnough) do
    WaitSeconds(2);
end;
