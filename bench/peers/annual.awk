# Annual values of an HTS file of daily series, straight from its text.
# usage: mawk -v end_month=9 -f annual.awk CONTROL.txt INPUT.hts > RESULT.csv

function days_of(year,    leap_year) {
    leap_year = end_month >= 2 ? year : year - 1 # the year that has the last February
    return leap_year % 4 == 0 && (leap_year % 100 != 0 || leap_year % 400 == 0) ? 366 : 365
}

# Sets year[1 .. steps], and days[YEAR], the number of its timesteps.
function read_timesteps(    i, date) {
    for (i = 1; i <= steps; ++i) {
        getline
        split($0, date, "-")
        year[i] = date[1] + (date[2] > end_month)
        ++days[year[i]]
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

function annualize(slot, method,    i, now, value, count) {
    now = year[1]
    for (i = 1; i <= steps; ++i) {
        getline
        if (year[i] != now) {
            print_year(slot, method, now, value, count)
            now = year[i]
            value = count = 0
        }
        if ($0 == "NaN")
            continue
        ++count
        if (method == "MaxNaN") {
            if (count == 1 || $0 + 0 > value)
                value = $0 + 0
        } else if (method == "MinNaN") {
            if (count == 1 || $0 + 0 < value)
                value = $0 + 0
        } else {
            value += $0
        }
    }
    print_year(slot, method, now, value, count)
}

BEGIN { FS = "\n"; print "slot,year,value" } # fields are not needed

FNR == NR { split($0, rule, ": "); method_of[rule[1]] = rule[2]; next }

/^time_steps:/ { steps = substr($0, 12) + 0 }
/^END_RUN_PREAMBLE/ { read_timesteps() }
/^object_name: / { object = substr($0, 14) }
/^slot_name: / { slot = object "." substr($0, 12) }
/^scale: / { annualize(slot, method_of[slot]) }
