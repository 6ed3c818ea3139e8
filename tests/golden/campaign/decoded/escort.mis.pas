IFF "escort.mis"
{
  FORM "MISN"
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
        CHUNK $56A0F92F // OBJ_PROP_TYPE
        {
          BYTE [4] $10 $00 $00 $00
        }
      }
      FORM "PROP"
      {
        CHUNK $59F32AC2
        {
          BYTE [11] $45 $73 $63 $6F $72 $74 $46 $6C $6F $77 $00
        }
      }
      FORM "PROP"
      {
        CHUNK $164A8982 // OBJ_PROP_PROG_MAIN
        {
          BYTE [11] $45 $73 $63 $6F $72 $74 $4D $61 $69 $6E $00
        }
      }
      FORM "PROP"
      {
        CHUNK $56A0F92F // OBJ_PROP_TYPE
        {
          BYTE [4] $10 $00 $00 $00
        }
      }
    }
    CHUNK "FLGS"
    {
      long $2B2A1E3D          //HaulerSafe
      long $EB1003A3
      long 1
      long $131C3D7B          //Launched
      long $EB1003A3
      long 0
    }
    CHUNK "FUNC"
    {
      WCP_ASM
      {
        func fn_6C4E6754_joknnjmmjjhj 2
        {
          alloc 3;
          movc v24 0;
          label "050w";
          movv v8 v16;
          movv v15 v8;
          IsAlive v15;
          movv v8 v0;
          if v8
          {
            movc v8 1;
            movv v15 v8;
            WaitSeconds v15;
            movc v8 1;
            addv v24 v24 v8;
            movv v8 v24;
            movv v26 v8;
            movv v8 v17;
            movv v9 v8;
            movv v8 v26;
            opv v8 4 v9;
            movv v8 v1;
            if v8
            {
              goto "050e";
            }
          }
          else
          {
            goto "050e";
          }
          goto "050w";
          label "050e";
          movv v8 v16;
          movv v15 v8;
          IsAlive v15;
          movv v8 v0;
          opc v8 0 0;
          movv v8 v1;
          movv v25 v8;
          return v25;
        }
        func fn_4E059707_hkonmljjijhh 3
        {
          alloc 2;
          movc v8 0;
          movv v24 v8;
          movv v8 v16;
          movv v25 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v25;
          opv v8 0 v9;
          movv v8 v1;
          opc v8 0 0;
          movv v8 v1;
          if v8
          {
            movv v8 v24;
            movv v25 v8;
            movv v8 v16;
            movv v15 v8;
            IsAlive v15;
            movv v8 v0;
            movv v9 v8;
            movv v8 v25;
            addv v8 v8 v9;
            movv v24 v8;
          }
          movv v8 v17;
          movv v25 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v25;
          opv v8 0 v9;
          movv v8 v1;
          opc v8 0 0;
          movv v8 v1;
          if v8
          {
            movv v8 v24;
            movv v25 v8;
            movv v8 v17;
            movv v15 v8;
            IsAlive v15;
            movv v8 v0;
            movv v9 v8;
            movv v8 v25;
            addv v8 v8 v9;
            movv v24 v8;
          }
          movv v8 v18;
          movv v25 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v25;
          opv v8 0 v9;
          movv v8 v1;
          opc v8 0 0;
          movv v8 v1;
          if v8
          {
            movv v8 v24;
            movv v25 v8;
            movv v8 v18;
            movv v15 v8;
            IsAlive v15;
            movv v8 v0;
            movv v9 v8;
            movv v8 v25;
            addv v8 v8 v9;
            movv v24 v8;
          }
          return v24;
        }
        func fn_E7A5C316_mjmnhjjokohh 3
        {
          alloc 2;
          movv v8 v16;
          movv v24 v8;
          movv v8 v16;
          movv v25 v8;
          movv v8 v17;
          movv v9 v8;
          movv v8 v25;
          addv v8 v8 v9;
          movv v25 v8;
          movc v8 1;
          movv v9 v8;
          movv v8 v25;
          subv v8 v8 v9;
          movv v25 v8;
          label "078f";
          opv v24 4 v25;
          if v1
          {
            goto "078e";
          }
          else
          {
            movv v8 v24;
            movv v15 v8;
            ShowText v15;
            movv v8 v18;
            movv v15 v8;
            WaitSeconds v15;
          }
          addc v24 v24 1;
          goto "078f";
          label "078e";
        }
        func fn_FEB95214_lijliinilohj 3
        {
          alloc 1;
          movv v8 v16;
          movv v15 v8;
          movv v8 v17;
          movv v14 v8;
          OrderFlyTo v15 v14;
          label "090w";
          movv v8 v16;
          movv v15 v8;
          movv v8 v17;
          movv v14 v8;
          Distance v15 v14;
          movv v8 v0;
          movv v24 v8;
          movv v8 v18;
          movv v9 v8;
          movv v8 v24;
          opv v8 2 v9;
          movv v8 v1;
          if v8
          {
            goto "090e";
          }
          else
          {
            movc v8 2;
            movv v15 v8;
            WaitSeconds v15;
          }
          goto "090w";
          label "090e";
        }
        func EscortMain
        {
          alloc 2;
          movc v24 1;
          movv v8 $FC00D8F7;
          movv v25 v8;
          movc v8 1;
          movv v9 v8;
          movv v8 v25;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            movc v8 $010C72E7;
            movv v15 v8;
            Remove v15;
          }
          else
          {
            movc v8 $010C72E7;
            movv v15 v8;
            movc v8 $9805235D;
            movv v14 v8;
            OrderFollow v15 v14;
          }
          movc v8 26;
          movv v15 v8;
          movc v8 $09C43AF5;
          movv v14 v8;
          ShowTextFrom v15 v14;
          movc v8 $C406FC99;
          movv v15 v8;
          movc v8 $09C43AF5;
          movv v14 v8;
          OrderFollow v15 v14;
          label "124w";
          movv v8 v24;
          movv v25 v8;
          movc v8 3;
          movv v9 v8;
          movv v8 v25;
          opv v8 2 v9;
          movv v8 v1;
          if v8
          {
            movv v8 v24;
            movv v25 v8;
            movc v8 1;
            movv v9 v8;
            movv v8 v25;
            opv v8 0 v9;
            movv v8 v1;
            if v8
            {
              movc v8 $09C43AF5;
              push v8;
              movc v8 $764E671D;
              push v8;
              movc v8 1500;
              push v8;
              call fn_FEB95214_lijliinilohj 3;
            }
            else
            {
              movc v8 $09C43AF5;
              push v8;
              movc v8 $72E83554;
              push v8;
              movc v8 1500;
              push v8;
              call fn_FEB95214_lijliinilohj 3;
            }
            movc v8 1;
            addv v24 v24 v8;
          }
          else
          {
            goto "124e";
          }
          goto "124w";
          label "124e";
          movc v8 1;
          movv v15 v8;
          movc v8 1;
          movv v14 v8;
          SetObjective v15 v14;
          movc v8 29;
          movv v15 v8;
          ShowText v15;
          movc v8 $09C43AF5;
          movv v15 v8;
          Remove v15;
          movc v8 $C406FC99;
          movv v15 v8;
          Remove v15;
          movc v8 1;
          movv v15 v8;
          EndMission v15;
        }
        func MiraMain
        {
          movc v8 $09C43AF5;
          movv v15 v8;
          OrderHold v15;
        }
        func fn_3BA7C8D7_ioilihkmiihh
        {
          alloc 3;
          movc v8 30;
          movv v15 v8;
          ShowText v15;
          movc v8 2;
          movv v15 v8;
          movc v8 0;
          movv v14 v8;
          SetObjective v15 v14;
          movc v8 1;
          movv v24 v8;
          movc v8 3;
          movv v25 v8;
          label "150f";
          opv v24 4 v25;
          if v1
          {
            goto "150e";
          }
          else
          {
            Activate Raider1;
            Activate $CC461236;
            movc v8 Raider1;
            movv v15 v8;
            movc v8 $09C43AF5;
            movv v14 v8;
            OrderAttack v15 v14;
            movc v8 $CC461236;
            movv v15 v8;
            movc v8 $09C43AF5;
            movv v14 v8;
            OrderAttack v15 v14;
            movc v8 Raider1;
            push v8;
            movc v8 60;
            push v8;
            call fn_6C4E6754_joknnjmmjjhj 2;
            movv v8 v0;
            movv v26 v8;
            movc v8 $CC461236;
            push v8;
            movc v8 30;
            push v8;
            call fn_6C4E6754_joknnjmmjjhj 2;
            movv v8 v0;
            movv v9 v8;
            movv v8 v26;
            andv v8 v8 v9;
            if v8
            {
              movc v8 20;
              addv $357AEF48 $357AEF48 v8;
            }
          }
          addc v24 v24 1;
          goto "150f";
          label "150e";
        }
        func MiraHit
        {
          alloc 1;
          movv v8 Launched;
          movv v24 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v24;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            movc v8 1;
            movv Launched v8;
            PlaySound alarm;
            movc v8 27;
            movv v15 v8;
            ShowText v15;
            call fn_3BA7C8D7_ioilihkmiihh 0;
          }
        }
        func MiraDown
        {
          movc v8 0;
          movv HaulerSafe v8;
          movc v8 0;
          movv v15 v8;
          movc v8 2;
          movv v14 v8;
          SetObjective v15 v14;
          movc v8 28;
          movv v15 v8;
          ShowText v15;
          movc v8 2;
          movv v15 v8;
          EndMission v15;
        }
        func CarrierDown
        {
          movc v8 2;
          movv v15 v8;
          movc v8 1;
          movv v14 v8;
          SetObjective v15 v14;
          movc v8 50;
          addv $357AEF48 $357AEF48 v8;
        }
        func EscortFlow
        {
          alloc 3;
          label "192w";
          movv v8 HaulerSafe;
          movv v26 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v26;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            goto "192e";
          }
          else
          {
            movc v8 Raider1;
            movv v15 v8;
            movc v8 $09C43AF5;
            movv v14 v8;
            Distance v15 v14;
            movv v8 v0;
            movv v24 v8;
            movc v8 $CC461236;
            movv v15 v8;
            movc v8 $09C43AF5;
            movv v14 v8;
            Distance v15 v14;
            movv v8 v0;
            movv v25 v8;
            movv v8 v25;
            movv v26 v8;
            movv v8 v24;
            movv v9 v8;
            movv v8 v26;
            opv v8 2 v9;
            movv v8 v1;
            if v8
            {
              movv v8 v25;
              movv v24 v8;
            }
            movv v8 v24;
            movv v26 v8;
            movc v8 4000;
            movv v9 v8;
            movv v8 v26;
            opv v8 2 v9;
            movv v8 v1;
            if v8
            {
              movc v8 27;
              movv v15 v8;
              movc v8 $010C72E7;
              movv v14 v8;
              ShowTextFrom v15 v14;
            }
            movc v8 10;
            movv v15 v8;
            WaitSeconds v15;
          }
          goto "192w";
          label "192e";
        }
      }
    }
    FORM "SCTR"
    {
      CHUNK "ID__"
      {
        BYTE [12] $6F $75 $74 $70 $6F $73 $74 $2E $73 $65 $63 $00
      }
      FORM "OBJS"
      {
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [14] $66 $69 $67 $68 $74 $65 $72 $5F $6C $69 $67 $68 $74 $00
          }
          CHUNK "COMN"
          {
            long $9805235D
            BYTE [12] $00 $00 $96 $43 $00 $00 $C8 $42 $00 $00 $61 $44
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $13 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0A $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $DB4529D3 // OBJ_PROP_PILOT
              {
                BYTE [4] $01 $00 $00 $00
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [14] $66 $69 $67 $68 $74 $65 $72 $5F $6C $69 $67 $68 $74 $00
          }
          CHUNK "COMN"
          {
            long $010C72E7
            BYTE [12] $00 $00 $96 $C3 $00 $00 $C8 $42 $00 $00 $61 $44
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $14 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0B $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $DB4529D3 // OBJ_PROP_PILOT
              {
                BYTE [4] $02 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $7CD3CF30 // OBJ_PROP_BRIEF_COLOR
              {
                BYTE [16] $01 $00 $00 $00 $CD $CC $4C $3E $9A $99 $19 $3F $00 $00 $80 $3F
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [7] $68 $61 $75 $6C $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $09C43AF5
            BYTE [12] $00 $00 $00 $00 $00 $00 $C8 $C3 $00 $80 $BB $44
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $1A $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0E $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $DB4529D3 // OBJ_PROP_PILOT
              {
                BYTE [4] $05 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $164A8982 // OBJ_PROP_PROG_MAIN
              {
                BYTE [9] $4D $69 $72 $61 $4D $61 $69 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [9] $4D $69 $72 $61 $44 $6F $77 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $841E2D1E // OBJ_PROP_EVENT0
              {
                BYTE [8] $4D $69 $72 $61 $48 $69 $74 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $214E3DDF // OBJ_PROP_ACTIONSPHERE
              {
                BYTE [4] $70 $17 $00 $00
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [6] $43 $41 $52 $47 $4F $00
          }
          CHUNK "COMN"
          {
            long $C406FC99
            BYTE [12] $00 $00 $00 $00 $00 $00 $C8 $C3 $00 $80 $A2 $44
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $16 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $8D12CACF // OBJ_PROP_RADIUS
              {
                BYTE [4] $00 $00 $20 $42
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [15] $63 $61 $72 $72 $69 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $15E817FE
            BYTE [12] $00 $80 $3B $46 $00 $80 $3B $45 $00 $60 $EA $46
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $1A $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0D $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [12] $43 $61 $72 $72 $69 $65 $72 $44 $6F $77 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $7CD3CF30 // OBJ_PROP_BRIEF_COLOR
              {
                BYTE [16] $02 $00 $00 $00 $66 $66 $66 $3F $CD $CC $4C $3E $CD $CC $CC $3D
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [15] $66 $69 $67 $68 $74 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $554F438C    //Raider1
            BYTE [12] $00 $30 $40 $46 $00 $C0 $41 $45 $00 $78 $E6 $46
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $14 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0C $00 $00 $00
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [15] $66 $69 $67 $68 $74 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $CC461236
            BYTE [12] $00 $D0 $36 $46 $00 $40 $35 $45 $00 $78 $E6 $46
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $14 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $C0182354 // OBJ_PROP_NAME
              {
                BYTE [4] $0C $00 $00 $00
              }
            }
          }
        }
        FORM "OBJ_"
        {
          CHUNK "TYPE"
          {
            BYTE [9] $44 $45 $42 $52 $53 $46 $4C $44 $00
          }
          CHUNK "COMN"
          {
            long $10E9110B
            BYTE [12] $00 $00 $7A $45 $00 $00 $00 $00 $00 $E0 $AB $46
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $0E $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $8D12CACF // OBJ_PROP_RADIUS
              {
                BYTE [4] $00 $40 $1C $45
              }
            }
          }
        }
      }
    }
    FORM "ROOM"
    {
      CHUNK "ID__"
      {
        BYTE [9] $64 $65 $63 $6B $2E $72 $6F $6D $00
      }
    }
    FORM "ROOM"
    {
      CHUNK "ID__"
      {
        BYTE [10] $72 $65 $61 $64 $79 $2E $72 $6F $6D $00
      }
    }
    FORM "ROOM"
    {
      CHUNK "ID__"
      {
        BYTE [11] $68 $61 $6E $67 $61 $72 $2E $72 $6F $6D $00
      }
    }
  }
  FORM "EDTR"
  {
    CHUNK "CRCS"
    {
      long 4
      long $56A0F92F          //_ObjType_DO_NOT_MODIFY
      long $164A8982          //FLO_Main
      long $2B2A1E3D          //HaulerSafe
      long $131C3D7B          //Launched
      cstring "_ObjType_DO_NOT_MODIFY"
      cstring "FLO_Main"
      cstring "HaulerSafe"
      cstring "Launched"
    }
  }
}
