mission Demo;
var kills = 3, Flag2;
const Max = $10, Neg = - 5;
enum A, B = 5, C;
#SETKILLBOARD(1, 2);
#SETROOMS("a.rom");
#GFPROC: "gf";
#MAINPROC: "Main";
#SECTOR: "x.sec";
