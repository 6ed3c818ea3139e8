IFF "outpost.sec"
{
  FORM "MED_"
  {
    CHUNK "VERS"
    {
      BYTE [16] $01 $69 $01 $00 $00 $01 $00 $00 $00 $01 $00 $00 $00 $01 $00 $00
      BYTE [8] $00 $00 $00 $00 $00 $00 $00 $00
    }
    FORM "PLST"
    {
      FORM "PROP"
      {
        CHUNK $56A0F92F // OBJ_PROP_TYPE
        {
          BYTE [4] $1E $00 $00 $00
        }
      }
      FORM "PROP"
      {
        CHUNK $A971779D
        {
          BYTE [4] $03 $00 $00 $00
        }
      }
    }
    FORM "OBJS"
    {
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [6] $4C $49 $47 $48 $54 $00
        }
        CHUNK "COMN"
        {
          long $96B85105
          BYTE [12] $00 $00 $00 $00 $00 $40 $9C $46 $00 $24 $F4 $C8
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $03 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $440950ED // OBJ_PROP_LIGHT_TYPE
            {
              BYTE [4] $01 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $8D4A2E9F // OBJ_PROP_LIGHT_COLOR
            {
              BYTE [12] $00 $00 $80 $3F $1F $85 $6B $3F $CD $CC $4C $3F
            }
          }
          FORM "PROP"
          {
            CHUNK $3915DCFD // OBJ_PROP_LENS_FLARE
            {
              BYTE [4] $01 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $DB9BFB6D // OBJ_PROP_DIRECTION
            {
              BYTE [12] $00 $00 $00 $00 $FF $FF $FF $FF $19 $00 $00 $00
            }
          }
        }
      }
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [6] $48 $42 $4F $44 $59 $00
        }
        CHUNK "COMN"
        {
          long $4BCBC39B
          BYTE [12] $00 $40 $9C $47 $00 $60 $6A $C6 $00 $60 $EA $47
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $18 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $6C16661E // OBJ_PROP_HBODY_OBJ
            {
              BYTE [4] $04 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $8D12CACF // OBJ_PROP_RADIUS
            {
              BYTE [4] $00 $60 $EA $46
            }
          }
        }
      }
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [14] $73 $74 $61 $74 $69 $6F $6E $5F $73 $6D $61 $6C $6C $00
        }
        CHUNK "COMN"
        {
          long $65A8453C
          BYTE [12] $00 $00 $00 $00 $00 $00 $00 $00 $00 $00 $00 $00
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
              BYTE [4] $12 $00 $00 $00
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
          BYTE [9] $4E $41 $56 $50 $4F $49 $4E $54 $00
        }
        CHUNK "COMN"
        {
          long $EF4736A7
          BYTE [12] $00 $00 $00 $00 $00 $00 $00 $00 $00 $80 $3B $46
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $15 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $7CEB526F // OBJ_PROP_NAV_DATA
            {
              BYTE [16] $01 $00 $00 $00 $00 $00 $00 $00 $D0 $07 $00 $00 $3C $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $C0182354 // OBJ_PROP_NAME
            {
              BYTE [4] $0F $00 $00 $00
            }
          }
        }
      }
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [9] $4E $41 $56 $50 $4F $49 $4E $54 $00
        }
        CHUNK "COMN"
        {
          long $764E671D
          BYTE [12] $00 $A0 $0C $46 $00 $80 $BB $44 $00 $40 $9C $46
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $15 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $7CEB526F // OBJ_PROP_NAV_DATA
            {
              BYTE [16] $02 $00 $00 $00 $00 $00 $00 $00 $D0 $07 $00 $00 $3C $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $C0182354 // OBJ_PROP_NAME
            {
              BYTE [4] $10 $00 $00 $00
            }
          }
        }
      }
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [9] $4E $41 $56 $50 $4F $49 $4E $54 $00
        }
        CHUNK "COMN"
        {
          long $0149578B
          BYTE [12] $00 $80 $BB $C5 $00 $40 $1C $C5 $00 $20 $CB $46
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $15 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $7CEB526F // OBJ_PROP_NAV_DATA
            {
              BYTE [16] $03 $00 $00 $00 $00 $00 $00 $00 $D0 $07 $00 $00 $3C $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $C0182354 // OBJ_PROP_NAME
            {
              BYTE [4] $11 $00 $00 $00
            }
          }
        }
      }
      FORM "OBJ_"
      {
        CHUNK "TYPE"
        {
          BYTE [10] $4A $55 $4D $50 $50 $4F $49 $4E $54 $00
        }
        CHUNK "COMN"
        {
          long $72E83554
          BYTE [12] $00 $00 $FA $44 $00 $00 $00 $00 $00 $C8 $2F $47
        }
        FORM "PLST"
        {
          FORM "PROP"
          {
            CHUNK $56A0F92F // OBJ_PROP_TYPE
            {
              BYTE [4] $09 $00 $00 $00
            }
          }
          FORM "PROP"
          {
            CHUNK $8D12CACF // OBJ_PROP_RADIUS
            {
              BYTE [4] $00 $80 $BB $44
            }
          }
          FORM "PROP"
          {
            CHUNK $C0182354 // OBJ_PROP_NAME
            {
              BYTE [4] $13 $00 $00 $00
            }
          }
        }
      }
    }
  }
  FORM "EDTR"
  {
    CHUNK "CRCS"
    {
      long 1
      long $56A0F92F          //_ObjType_DO_NOT_MODIFY
      cstring "_ObjType_DO_NOT_MODIFY"
    }
  }
}
