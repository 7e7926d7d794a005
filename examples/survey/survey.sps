/* A survey as a spreadsheet exports it: a header, text in quotes, amounts as people write them. */
GET DATA
  /TYPE=TXT
  /FILE='examples/survey/survey.csv'
  /ENCODING='UTF8'
  /DELCASE=LINE
  /DELIMITERS=","
  /QUALIFIER='"'
  /ARRANGEMENT=DELIMITED
  /FIRSTCASE=2
  /IMPORTCASE=ALL
  /MAP
  /VARIABLES=
    respondent F4.0
    interviewed ADATE10
    age F3.0
    income DOLLAR10.2
    satisfied PCT5.1
    town A20
    remark A60.
