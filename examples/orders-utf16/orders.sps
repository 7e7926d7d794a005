/* UTF-16 as many spreadsheets save it: a byte-order mark, tabs, CR LF. */
GET DATA
  /TYPE=TXT
  /FILE='examples/orders-utf16/orders.txt'
  /ENCODING='UTF16'
  /DELCASE=LINE
  /DELIMITERS="\t"
  /QUALIFIER="'"
  /ARRANGEMENT=DELIMITED
  /FIRSTCASE=2
  /VARIABLES=
    item A20
    ordered DATETIME20
    price DOT10.2
    count N4.
