/* Fixed columns, two records a household. */
GET DATA
  /TYPE=TXT
  /FILE='examples/households/households.dat'
  /ARRANGEMENT=FIXED
  /FIXCASE=2
  /FIRSTCASE=1
  /IMPORTCASE=ALL
  /VARIABLES=
    /1 id 0-3 F4.0
       surname 4-15 A12
       born 16-25 EDATE10
    /2 street 0-14 A15
       flat 15-17 F3.0
       rent 18-25 COMMA8.2
       since 26-31 ADATE8.
