/* A type needs 95 of 100 values unless DATATYPEMIN says otherwise: one bad value in twenty is
   still dirt, two make the column text. */
GET DATA
  /TYPE=TXT
  /FILE='examples/auto-threshold/readings.csv'
  /DELCASE=LINE
  /DELIMITERS=","
  /DATATYPEMIN PERCENTAGE=95
  /ARRANGEMENT=DELIMITED
  /VARIABLES=
    enough AUTO
    toofew AUTO
    taken AUTO.
