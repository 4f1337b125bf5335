# Annual values of an HTS file of daily series, straight from its text.
# usage: mawk -v end_month=9 -f annual.awk CONTROL.txt INPUT.hts > RESULT.csv

function days_of(year,    leap_year) {
    leap_year = end_month >= 2 ? year : year - 1 # the year that has the last February
    return leap_year % 4 == 0 && (leap_year % 100 != 0 || leap_year % 400 == 0) ? 366 : 365
}

# Sets year_at[1 .. years], and days[YEAR], the number of its timesteps.
function read_timesteps(    i, date, year) {
    for (i = 1; i <= steps; ++i) {
        getline
        split($0, date, "-")
        year = date[1] + (date[2] > end_month)
        if (++days[year] == 1)
            year_at[++years] = year
    }
}

function print_year(slot, method, year, value, count) {
    if (days[year] != days_of(year))
        return # incomplete
    if (method == "Average")
        value = count == days[year] ? value / count : "" # one missing value, and there is none
    else if (method != "SumNaN" && count == 0)
        value = ""
    printf value == "" ? "%s,%d,%s\n" : "%s,%d,%.17g\n", slot, year, value
}

# A loop for each year and kind of method: no line has to be asked for its year or its method.
function annualize(slot, method,    i, left, line, value, count) {
    for (i = 1; i <= years; ++i) {
        value = count = 0
        left = days[year_at[i]]
        if (method == "MaxNaN") {
            for (; left > 0; --left) {
                getline line
                if (line != "NaN" && (++count == 1 || line + 0 > value))
                    value = line + 0
            }
        } else if (method == "MinNaN") {
            for (; left > 0; --left) {
                getline line
                if (line != "NaN" && (++count == 1 || line + 0 < value))
                    value = line + 0
            }
        } else {
            for (; left > 0; --left) {
                getline line
                if (line != "NaN") {
                    ++count
                    value += line
                }
            }
        }
        print_year(slot, method, year_at[i], value, count)
    }
}

BEGIN { FS = "\n"; print "slot,year,value" } # fields are not needed

FNR == NR { split($0, rule, ": "); method_of[rule[1]] = rule[2]; next }

/^time_steps:/ { steps = substr($0, 12) + 0 }
/^END_RUN_PREAMBLE/ { read_timesteps() }
/^object_name: / { object = substr($0, 14) }
/^slot_name: / { slot = object "." substr($0, 12) }
/^scale: / { annualize(slot, method_of[slot]) }
