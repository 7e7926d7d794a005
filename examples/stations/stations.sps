/* A table whose columns are aligned with blanks; runs of blanks count as one delimiter. */
GET DATA
  /TYPE=TXT
  /FILE="examples/stations/stations.txt"
  /DELCASE=LINE
  /DELIMITERS=" "
  /ARRANGEMENT=DELIMITED
  /LEADINGSPACES IGNORE=YES
  /MULTIPLESPACES IGNORE=YES
  /FIRSTCASE=3
  /VARIABLES=
    station A10
    height F5.0
    rain F6.1
    sunshine TIME5
    summary X
    opened SDATE10.
