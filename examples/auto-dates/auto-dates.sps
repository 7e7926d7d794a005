/* Every family of dates, times and durations, found from the data. */
GET DATA
  /TYPE=TXT
  /FILE='examples/auto-dates/dates.txt'
  /DELCASE=LINE
  /DELIMITERS=";"
  /ARRANGEMENT=DELIMITED
  /VARIABLES=
    named AUTO
    american AUTO
    european AUTO
    sorted AUTO
    quarter AUTO
    monthyear AUTO
    week AUTO
    weekday AUTO
    month AUTO
    clock AUTO
    lap AUTO
    stay AUTO
    logged AUTO
    stamped AUTO
    run AUTO.
