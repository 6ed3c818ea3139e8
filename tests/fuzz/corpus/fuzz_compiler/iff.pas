iff "raw.bin"
{ form "DATA" { chunk "ABCD" { long 1 } } }
