/* Every type is found from the data: numbers and amounts of all kinds, an empty column, text. */
GET DATA
  /TYPE=TXT
  /FILE='examples/auto-amounts/amounts.csv'
  /ENCODING='UTF8'
  /DELCASE=LINE
  /DELIMITERS=";"
  /ARRANGEMENT=DELIMITED
  /FIRSTCASE=2
  /VARIABLES=
    plain AUTO
    exponent AUTO
    dollars AUTO
    share AUTO
    comma AUTO
    dot AUTO
    nothing AUTO
    label AUTO.
