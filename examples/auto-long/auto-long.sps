/* Text longer than the widest string: the variable is as wide as one can be, the rest is cut. */
GET DATA
  /TYPE=TXT
  /FILE='examples/auto-long/essays.txt'
  /DELCASE=LINE
  /DELIMITERS="|"
  /ARRANGEMENT=DELIMITED
  /VARIABLES=
    id AUTO
    essay AUTO.
