unit Faulty;

function Faulty(x);
begin
  result := x *;
end;
