IFF "small.iff"
{
  FORM "TEST"
  {
    CHUNK "DATA"
    {
      BYTE [3] $01 $02 $03
    }
    CHUNK "BULL"
    {
      BYTE [1] $FF
    }
  }
}
