IFF "patrol.mis"
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
          BYTE [11] $50 $61 $74 $72 $6F $6C $46 $6C $6F $77 $00
        }
      }
      FORM "PROP"
      {
        CHUNK $164A8982 // OBJ_PROP_PROG_MAIN
        {
          BYTE [11] $50 $61 $74 $72 $6F $6C $4D $61 $69 $6E $00
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
      long $2A7BD9AB          //BeaconsReached
      long $EB1003A3
      long 0
      long $0609279B          //RaidersDown
      long $EB1003A3
      long 0
      long $5E11AB14          //WaveActive
      long $EB1003A3
      long 0
      long $4674FEE2          //__RaiderDown_downHere
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
        func PatrolMain
        {
          alloc 3;
          movc v8 $B570677B;
          movv v15 v8;
          movc v8 $9805235D;
          movv v14 v8;
          CameraWatch v15 v14;
          movc v8 20;
          push v8;
          movc v8 2;
          push v8;
          movc v8 3;
          push v8;
          call fn_E7A5C316_mjmnhjjokohh 3;
          CameraOff;
          movc v8 $010C72E7;
          movv v15 v8;
          movc v8 $9805235D;
          movv v14 v8;
          OrderFollow v15 v14;
          movc v8 1;
          movv v24 v8;
          movc v8 3;
          movv v25 v8;
          label "132f";
          opv v24 4 v25;
          if v1
          {
            goto "132e";
          }
          else
          {
            movv v8 v24;
            movv v26 v8;
            movc v8 1;
            movv v9 v8;
            movv v8 v26;
            opv v8 0 v9;
            movv v8 v1;
            if v8
            {
              movc v8 $9805235D;
              push v8;
              movc v8 $EF4736A7;
              push v8;
              movc v8 1000;
              push v8;
              call fn_FEB95214_lijliinilohj 3;
            }
            else
            {
              movv v8 v24;
              movv v26 v8;
              movc v8 2;
              movv v9 v8;
              movv v8 v26;
              opv v8 0 v9;
              movv v8 v1;
              if v8
              {
                movc v8 $9805235D;
                push v8;
                movc v8 $764E671D;
                push v8;
                movc v8 1000;
                push v8;
                call fn_FEB95214_lijliinilohj 3;
              }
              else
              {
                movc v8 $9805235D;
                push v8;
                movc v8 $0149578B;
                push v8;
                movc v8 1000;
                push v8;
                call fn_FEB95214_lijliinilohj 3;
              }
            }
            movc v8 1;
            addv BeaconsReached BeaconsReached v8;
            movc v8 24;
            movv v15 v8;
            ShowText v15;
            movv v8 v24;
            movv v26 v8;
            movc v8 2;
            movv v9 v8;
            movv v8 v26;
            opv v8 0 v9;
            movv v8 v1;
            if v8
            {
              call fn_7F35940A_loolmjlllhhj 0;
            }
          }
          addc v24 v24 1;
          goto "132f";
          label "132e";
          movc v8 0;
          movv v15 v8;
          movc v8 1;
          movv v14 v8;
          SetObjective v15 v14;
        }
        func fn_7F35940A_loolmjlllhhj
        {
          alloc 3;
          movc v8 1;
          movv WaveActive v8;
          movc v8 22;
          movv v15 v8;
          movc v8 $010C72E7;
          movv v14 v8;
          ShowTextFrom v15 v14;
          movc v8 1;
          movv v24 v8;
          movc v8 3;
          movv v25 v8;
          label "154f";
          opv v24 4 v25;
          if v1
          {
            goto "154e";
          }
          else
          {
            movc v8 Raider1;
            movv v15 v8;
            movc v8 $9805235D;
            movv v14 v8;
            OrderAttack v15 v14;
            movc v8 $CC461236;
            movv v15 v8;
            movc v8 $010C72E7;
            movv v14 v8;
            OrderAttack v15 v14;
            movc v8 $BB4122A0;
            movv v15 v8;
            movc v8 $9805235D;
            movv v14 v8;
            OrderAttack v15 v14;
            movc v8 30;
            movv v26 v8;
            movc v8 20;
            movv v15 v8;
            Random v15;
            movv v8 v0;
            movv v9 v8;
            movv v8 v26;
            addv v8 v8 v9;
            movv v15 v8;
            WaitSeconds v15;
          }
          addc v24 v24 1;
          goto "154f";
          label "154e";
          movc v8 0;
          movv WaveActive v8;
        }
        func RaiderDown
        {
          alloc 1;
          movc v8 1;
          addv __RaiderDown_downHere __RaiderDown_downHere v8;
          movc v8 1;
          addv RaidersDown RaidersDown v8;
          movc v8 10;
          addv $357AEF48 $357AEF48 v8;
          movv v8 RaidersDown;
          movv v24 v8;
          movc v8 3;
          movv v9 v8;
          movv v8 v24;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            movc v8 1;
            movv v15 v8;
            movc v8 1;
            movv v14 v8;
            SetObjective v15 v14;
            movc v8 23;
            movv v15 v8;
            ShowText v15;
          }
        }
        func WingmanMain
        {
          movc v8 $010C72E7;
          movv v15 v8;
          movc v8 $9805235D;
          movv v14 v8;
          OrderFollow v15 v14;
        }
        func WingmanDown
        {
          movc v8 1;
          movv $FC00D8F7 v8;
          movc v8 2;
          movv v15 v8;
          movc v8 2;
          movv v14 v8;
          SetObjective v15 v14;
          movc v8 25;
          movv v15 v8;
          ShowText v15;
        }
        func PatrolFlow
        {
          alloc 3;
          movc v24 0;
          label "199w";
          movv v8 v24;
          movv v26 v8;
          movc v8 0;
          movv v9 v8;
          movv v8 v26;
          opv v8 0 v9;
          movv v8 v1;
          if v8
          {
            movc v8 5;
            movv v15 v8;
            WaitSeconds v15;
            movc v8 Raider1;
            push v8;
            movc v8 $CC461236;
            push v8;
            movc v8 $BB4122A0;
            push v8;
            call fn_4E059707_hkonmljjijhh 3;
            movv v8 v0;
            movv v25 v8;
            movc v8 $9805235D;
            movv v15 v8;
            IsAlive v15;
            movv v8 v0;
            opc v8 0 0;
            movv v8 v1;
            if v8
            {
              movc v8 2;
              movv v15 v8;
              EndMission v15;
              movc v8 1;
              movv v24 v8;
            }
            else
            {
              movv v8 BeaconsReached;
              movv v26 v8;
              movc v8 3;
              movv v9 v8;
              movv v8 v26;
              opv v8 0 v9;
              movv v8 v1;
              if v8
              {
                movv v8 v25;
                movv v26 v8;
                movc v8 0;
                movv v9 v8;
                movv v8 v26;
                opv v8 0 v9;
                movv v8 v1;
                if v8
                {
                  movc v8 31;
                  movv v15 v8;
                  ShowText v15;
                  movc v8 1;
                  movv v15 v8;
                  EndMission v15;
                  movc v8 1;
                  movv v24 v8;
                }
              }
            }
          }
          else
          {
            goto "199e";
          }
          goto "199w";
          label "199e";
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
            BYTE [12] $00 $00 $48 $43 $00 $00 $00 $00 $00 $00 $48 $44
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
            BYTE [12] $00 $00 $48 $C3 $00 $00 $00 $00 $00 $00 $48 $44
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
              CHUNK $164A8982 // OBJ_PROP_PROG_MAIN
              {
                BYTE [12] $57 $69 $6E $67 $6D $61 $6E $4D $61 $69 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [12] $57 $69 $6E $67 $6D $61 $6E $44 $6F $77 $6E $00
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
            BYTE [15] $66 $69 $67 $68 $74 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $554F438C    //Raider1
            BYTE [12] $00 $70 $14 $46 $00 $00 $E1 $44 $00 $10 $A4 $46
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
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [11] $52 $61 $69 $64 $65 $72 $44 $6F $77 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $12E9F423 // OBJ_PROP_TARGET_STRING
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
            BYTE [15] $66 $69 $67 $68 $74 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $CC461236
            BYTE [12] $00 $F0 $07 $46 $00 $00 $96 $44 $00 $30 $A7 $46
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
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [11] $52 $61 $69 $64 $65 $72 $44 $6F $77 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $12E9F423 // OBJ_PROP_TARGET_STRING
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
            BYTE [15] $66 $69 $67 $68 $74 $65 $72 $5F $72 $61 $69 $64 $65 $72 $00
          }
          CHUNK "COMN"
          {
            long $BB4122A0
            BYTE [12] $00 $30 $0E $46 $00 $C0 $0F $45 $00 $18 $AB $46
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
            FORM "PROP"
            {
              CHUNK $7C851FAA // OBJ_PROP_PROG_DEATH
              {
                BYTE [11] $52 $61 $69 $64 $65 $72 $44 $6F $77 $6E $00
              }
            }
            FORM "PROP"
            {
              CHUNK $12E9F423 // OBJ_PROP_TARGET_STRING
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
            BYTE [8] $50 $52 $4F $47 $43 $41 $4D $00
          }
          CHUNK "COMN"
          {
            long $B570677B
            BYTE [12] $00 $00 $00 $00 $00 $00 $96 $43 $00 $80 $BB $44
          }
          FORM "PLST"
          {
            FORM "PROP"
            {
              CHUNK $56A0F92F // OBJ_PROP_TYPE
              {
                BYTE [4] $19 $00 $00 $00
              }
            }
            FORM "PROP"
            {
              CHUNK $DB9BFB6D // OBJ_PROP_DIRECTION
              {
                BYTE [12] $00 $00 $00 $00 $00 $00 $00 $00 $FF $FF $FF $FF
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
  }
  FORM "EDTR"
  {
    CHUNK "CRCS"
    {
      long 6
      long $56A0F92F          //_ObjType_DO_NOT_MODIFY
      long $164A8982          //FLO_Main
      long $2A7BD9AB          //BeaconsReached
      long $0609279B          //RaidersDown
      long $5E11AB14          //WaveActive
      long $4674FEE2          //__RaiderDown_downHere
      cstring "_ObjType_DO_NOT_MODIFY"
      cstring "FLO_Main"
      cstring "BeaconsReached"
      cstring "RaidersDown"
      cstring "WaveActive"
      cstring "__RaiderDown_downHere"
    }
  }
}
