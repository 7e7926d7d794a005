/* Four values make a case, wherever the lines break; the first line is a title. */
GET DATA
  /TYPE=TXT
  /FILE='examples/readings/readings.txt'
  /DELCASE=VARIABLES 4
  /DELIMITERS=" "
  /ARRANGEMENT=DELIMITED
  /FIRSTCASE=2
  /VARIABLES=
    gauge A4
    level F5.2
    taken TIME5
    state A6.
