sector S;
var g;
external e = 1;
static s;
property p;
#BACKGROUND: %1010;
var bad = %102;
