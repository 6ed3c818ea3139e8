IFF "campaign.eng"
{
  FORM "DATA"
  {
    FORM "LANG"
    {
      CHUNK "INFO"
      {
        BYTE [16] $45 $6E $67 $6C $69 $73 $68 $00 $01 $00 $00 $00 $00 $00 $00 $00
        BYTE [12] $65 $6E $67 $00 $00 $00 $00 $00 $23 $00 $00 $00
      }
      CHUNK "TEXT"
      {
        cstring "The Frontier Watch"
        cstring "Patrol the Outer Beacons"
        cstring "Escort the Hauler"
        cstring "Outpost Kessa"
        cstring "Fly through all three beacons"
        cstring "Destroy the raiders"
        cstring "Keep Alpha Two alive"
        cstring "Keep the hauler alive"
        cstring "Bring the hauler to the jump point"
        cstring "Destroy the raider carrier"
        cstring "Alpha One"
        cstring "Alpha Two"
        cstring "Raider"
        cstring "Raider Carrier"
        cstring "Hauler Mira"
        cstring "Beacon One"
        cstring "Beacon Two"
        cstring "Beacon Three"
        cstring "Outpost Station"
        cstring "Jump Point"
        cstring "Alpha One, you are cleared for launch."
        cstring "Alpha Two, on your wing."
        cstring "Raiders at the second beacon!"
        cstring "All raiders destroyed. Well flown."
        cstring "Beacon reached."
        cstring "Alpha Two is hit and drifting!"
        cstring "Mira here. Engines at full, heading for the jump point."
        cstring "Mira is under fire!"
        cstring "We lost the hauler. Return to base."
        cstring "Mira has jumped out. Good work, Alpha."
        cstring "A carrier is launching more raiders!"
        cstring "Patrol complete. Head home."
        cstring "-"
        cstring "-"
        cstring "-"
      }
    }
  }
}
