IFF "weap.iff"
{
  FORM "WEAP"
  {
    CHUNK $7F444901
    {
      BYTE [3] $0A $1F $00
    }
    FORM "BULL"
    {
      CHUNK "DATA"
      {
        long 7                //bullet ID
        long 1234             //name (points to a string in spacefli.eng)
        long -1               //sound
        float 1500.0          //speed
        float 2000.0          //range
        float 0.25            //charge time
        float 10.0            //energy
        float 20.5            //damage
        float 0.75            //refire delay
        long 1                //needs ammo
      }
    }
    FORM "TIME"
    {
      CHUNK "TIME"
      {
             float 1.50
             float 0.125
      }
    }
    CHUNK "TXT "
    {
      // offset: 70
      // size: 29
      file "weap.iff_TXT _70.bin"
    }
    CHUNK "EDGE"
    {
      BYTE [16] $02 $09 $10 $17 $1E $25 $2C $33 $3A $41 $48 $4F $56 $5D $64 $6B
      BYTE [2] $72 $79
    }
  }
}
