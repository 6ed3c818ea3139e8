sector outpost;

// A sector unit describes the space a mission plays in: the background and the fixed objects (the sun,
// planets, stations, nav points, jump points). It has no functions and no variables; the missions name it
// with #SECTOR: "outpost.sec"; and place their own ships in it. It compiles into outpost.sec.

include constants;

// The names shown on the targeting display come from the campaign's string file (see the missions).
#STRINGS campaign;

// The background picture of space, by number.
#BACKGROUND: 3;

// Objects. The form is
//
//   object Name (GameName) AS KIND
//     OBJ: "class";             (ships only: the class of ship; the other kinds have a fixed one)
//     x: ...; y: ...; z: ...;   (the position, in metres)
//     PROPERTY: value, value;   (any number of properties)
//   end;
//
// Name is how the units refer to the object; GameName is the name the game knows it by (recorded by its
// checksum). A property takes texts, whole numbers or decimal numbers, as its kind needs; a constant or a
// string-file reference may stand for a number.

// The light of the local sun, far away along -z.
object Sun (Sun) AS LIGHT
  x: 0; y: 20000; z: -500000;
  LIGHTTYPE: LightSun;
  LIGHTCOLOR: 1.0, 0.92, 0.8;   // red, green, blue
  LENSFLARE: 1;
  DIRECTION: 0, -1, 25;
end;

// A planet: BODY picks its look, RADIUS its size.
object Kessa (Kessa) AS HBODY
  x: 80000; y: -15000; z: 120000;
  BODY: 4;
  RADIUS: 30000.0;
end;

// The station the patrols start from.
object Station (OutpostStation) AS CAPSHIP
  OBJ: "station_small";
  x: 0; y: 0; z: 0;
  NAME: Campaign["Outpost Station"];
  COLOR: TeamAllied, 0.2, 0.6, 1.0;
end;

// The three beacons of the patrol route. NAVDATA gives the nav point's number and its diameter.
object Beacon1 (Beacon1) AS NAVPOINT
  x: 0; y: 0; z: 12000;
  NAVDATA: 1, 2000;
  NAME: Campaign["Beacon One"];
end;

object Beacon2 (Beacon2) AS NAVPOINT
  x: 9000; y: 1500; z: 20000;
  NAVDATA: 2, 2000;
  NAME: Campaign["Beacon Two"];
end;

object Beacon3 (Beacon3) AS NAVPOINT
  x: -6000; y: -2500; z: 26000;
  NAVDATA: 3, 2000;
  NAME: Campaign["Beacon Three"];
end;

// The way out of the system.
object Gate (JumpGate) AS JUMPPOINT
  x: 2000; y: 0; z: 45000;
  RADIUS: 1500.0;
  NAME: Campaign["Jump Point"];
end;
