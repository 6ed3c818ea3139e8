IFF "frontier.srs"
{
  FORM "SERS"
  {
    CHUNK "VERS"
    {
      BYTE [16] $02 $01 $00 $01 $69 $01 $00 $00 $01 $00 $00 $00 $01 $00 $00 $00
      BYTE [12] $01 $00 $00 $00 $00 $00 $00 $00 $00 $00 $00 $00
    }
    FORM "PLST"
    {
      FORM "PROP"
      {
        CHUNK $164A8982 // OBJ_PROP_PROG_MAIN
        {
          BYTE [4] $4D $43 $50 $00
        }
      }
    }
    CHUNK "FLGS"
    {
      long $BE554F79          //Progress
      long $EB1003A3
      long 0
      long $357AEF48          //Score
      long $EB1003A3
      long 0
      long $5752356F          //RetriesLeft
      long $EB1003A3
      long 3
      long $FC00D8F7          //WingmanLost
      long $EB1003A3
      long 0
    }
    CHUNK "FUNC"
    {
      WCP_ASM
      {
        func MCP
        {
          alloc 3;
          label "030w";
          movv v8 Progress;
          movv v25 v8;
          movc v8 2;
          movv v9 v8;
          movv v8 v25;
          opv v8 2 v9;
          movv v8 v1;
          opc v8 0 0;
          movv v8 v1;
          if v8
          {
            goto "030e";
          }
          else
          {
            movv v8 Progress;
            movv v15 v8;
            StartMission v15;
            movv v8 v0;
            movv v24 v8;
            movv v8 v24;
            movv v25 v8;
            movc v8 1;
            movv v9 v8;
            movv v8 v25;
            opv v8 0 v9;
            movv v8 v1;
            if v8
            {
              movc v8 1;
              addv Progress Progress v8;
              movc v8 100;
              movv v25 v8;
              movv v8 RetriesLeft;
              movv v26 v8;
              movc v8 10;
              movv v9 v8;
              movv v8 v26;
              mulv v8 v8 v9;
              movv v9 v8;
              movv v8 v25;
              addv v8 v8 v9;
              addv Score Score v8;
            }
            else
            {
              movc v8 1;
              subv RetriesLeft RetriesLeft v8;
              movv v8 RetriesLeft;
              movv v25 v8;
              movc v8 0;
              movv v9 v8;
              movv v8 v25;
              opv v8 2 v9;
              movv v8 v1;
              if v8
              {
                goto "030e";
              }
            }
          }
          goto "030w";
          label "030e";
          movv v8 Progress;
          movv v25 v8;
          movc v8 2;
          movv v9 v8;
          movv v8 v25;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            movc v8 1;
            movv v15 v8;
            EndSeries v15;
          }
          else
          {
            movc v8 2;
            movv v15 v8;
            EndSeries v15;
          }
        }
      }
    }
  }
  FORM "EDTR"
  {
    CHUNK "CRCS"
    {
      long 5
      long $164A8982          //FLO_Main
      long $BE554F79          //Progress
      long $357AEF48          //Score
      long $5752356F          //RetriesLeft
      long $FC00D8F7          //WingmanLost
      cstring "FLO_Main"
      cstring "Progress"
      cstring "Score"
      cstring "RetriesLeft"
      cstring "WingmanLost"
    }
  }
}
