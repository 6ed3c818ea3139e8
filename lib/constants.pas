unit Constants;

// Names for the numbers that mission scripts pass to the game functions of gamefuncs.pas. A constant
// costs nothing at run time: wherever its name stands the compiler writes its value. Numbers may be
// written in decimal, in hexadecimal after "$" or in binary after "%".

const
  SecondsPerMinute = 60,
  OneKilometre = 1000,
  NoObject = 0,
  AllTeams = $FF,          // hexadecimal
  TeamMaskDefault = %0011; // binary: teams 0 and 1

// An enumeration numbers its names from 0 in the order written; "= n" starts again from n.

// Teams
enum TeamPlayer, TeamAllied, TeamHostile, TeamNeutral;

// Objective status, for SetObjective and ObjectiveStatus
enum ObjStatusOpen, ObjStatusDone, ObjStatusFailed;

// Mission outcome, for EndMission
enum OutcomeWon = 1, OutcomeLost, OutcomeAborted;

// Light kinds for the LIGHTTYPE property
enum LightPoint, LightSun;
