project build_all;

// A project unit makes no file of its own: it compiles other units, each into its own files, as if each
// had been built by itself. Build the whole campaign with
//
//   velkorc build -I out/demo --out-dir out/demo examples/campaign/build_all.pas
//
// The units are found beside this one. The string file comes first, so that the units after it find
// campaign.eng (in out/demo, hence the -I).
#FILE "campaign_eng.txt", "frontier.pas", "outpost.pas", "patrol.pas", "escort.pas";
