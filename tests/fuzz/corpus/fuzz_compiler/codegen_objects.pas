mission Objects;
#NAME name: 12;
object Later;
object Alpha (Alpha) AS SHIP
  OBJ: "Hornet";
  x: 100; y: -5.5; z: 0;
  MAIN: AlphaMain; EVENT_4: Ev; NAVDATA: 1, 5000; COLOR: 1, 0.5, 0.5, 1;
  ABSDATA: 1, 2, 3; ABCDATA: 4, 5; LIGHTCOLOR: 1.0, 1.0, 0.0; WING: 1;
end;
object Later (Later) AS CAMERA x: 0; y: 0; z: 0; end;
objective Kill hidden: 0; type: 1; text: 7; status: 0; counter: 3; end;
function AlphaMain; var a; begin a := Alpha + Kill end;
