/* A Latin-1 file, read in the locale's code page. */
GET DATA
  /TYPE=TXT
  /FILE='examples/members-latin1/members.txt'
  /ENCODING='LOCALE'
  /DELCASE=LINE
  /DELIMITERS=";"
  /ARRANGEMENT=DELIMITED
  /FIRSTCASE=2
  /IMPORTCASE=FIRST 2
  /VARIABLES=
    name A16
    joined EDATE10
    fee F8.2
    city A12.
