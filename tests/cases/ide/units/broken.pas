mission Broken;
include "faulty";
var a;
function Main;
begin
  a := 1 +;
  a := );
  a := Faulty(1);
  nosuchthing(a);
end;
