series frontier;

// The series unit holds what lasts from one mission to the next: its global variables are kept by the
// game for the whole campaign, and its main program decides which mission comes next. It compiles into
// frontier.srs.
//
// The first line names the unit kind (unit, mission, sector, series, project or iff) and the name of the
// unit, which is also the name of the file it compiles into.

include gamefuncs, constants;

const
  MissionCount = 2,  // patrol, escort
  WinBonus = 100;

// Global variables. Each one is recorded in the series by the checksum of its name together with its
// starting value, and a mission reaches it by declaring the same name "external" (see patrol.pas). The
// names must match exactly, letter case included.
var
  Progress = 0,      // missions won so far
  Score = 0,
  RetriesLeft = 3,   // failed attempts the player may still make
  WingmanLost = 0;   // set to 1 when Alpha Two did not come back

// The game runs the program named "MCP" as the series' main program.
function MCP;
var outcome;
begin
  // "until" repeats its body as long as the condition is still false.
  until (NOT (Progress < MissionCount)) do
  begin
    outcome := StartMission(Progress);
    if (outcome = OutcomeWon) then
    begin
      inc(Progress);
      inc(Score, WinBonus + RetriesLeft * 10);
    end
    else
    begin
      dec(RetriesLeft);
      if (RetriesLeft < 0) then
        break;
    end;
  end;
  if (Progress = MissionCount) then
    EndSeries(OutcomeWon)
  else
    EndSeries(OutcomeLost);
end;
