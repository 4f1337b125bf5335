# Makes what plot.gnuplot draws of the tables of htstool. For each slot of the annual table, N from 1:
#   name.N             Object.Slot
#   units.N, annual.units.N
#   annual.N           time and value of each year, NaN for a missing one
#   input.N            time, value, and the value again where a line would not show it, else NaN
#   input.range.N, annual.range.N
#                      the range of an axis, which gnuplot cannot find where all values are the same
#   missing.N          end of each year and the number of values missing in it
# and the file `slots`: for each N, how many values are in annual.N and input.N, and most in missing.N.
# usage: awk -v run=RUN -v folder=FOLDER -f columns.awk ANNUAL.csv COUNTS.csv INPUT.csv
# Ends with a message and exit code 1 where names do not tell which slot is which.

# Splits a row by RFC 4180; nearly all rows have no quotes.
function split_row(row, fields,    count, text) {
    sub(/\r$/, "", row)
    if (row !~ /"/)
        return split(row, fields, ",")
    row = row ","
    for (count = 0; row != ""; row = substr(row, RLENGTH + 1)) {
        match(row, /^("([^"]|"")*"|[^",]*),/)
        text = substr(row, 1, RLENGTH - 1)
        if (text ~ /^"/) {
            text = substr(text, 2, length(text) - 2)
            gsub(/""/, "\"", text)
        }
        fields[++count] = text
    }
    return count
}

function fail(text) {
    print text
    failed = 1
    exit 1
}

function out(name, slot) {
    return folder "/" name "." slot
}

function note_value(name, slot, value) {
    if (value == "NaN")
        return
    if (!values[name, slot]++)
        first[name, slot] = value
    else if (value != first[name, slot])
        has_range[name, slot] = 1
}

function print_range(name, slot,    half, middle) {
    middle = first[name, slot] + 0
    half = middle < 0 ? -middle / 100 : middle / 100
    if (has_range[name, slot])
        print "[* : *]" >out(name ".range", slot)
    else if (half == 0)
        print "[-1 : 1]" >out(name ".range", slot)
    else
        printf "[%.17g : %.17g]\n", middle - half, middle + half >out(name ".range", slot)
}

# The row before the one that is read: whether a line shows its value depends on both neighbours.
function write_held(next_value) {
    if (held_time != "")
        print held_time, held, (before == "NaN" && next_value == "NaN" ? held : "NaN") >out("input", held_slot)
    before = held
}

function start_slot(slot) {
    write_held("NaN")
    held_time = ""
    held = before = "NaN"
    held_slot = slot
}

FNR == 1 { ++file; start_slot(0); next }

{ split_row($0, field) }

file == 1 {
    name = field[3] SUBSEP field[4]
    if (!(name in slot_of)) {
        slot_of[name] = ++slots
        shown[slots] = field[3] "." field[4]
        print shown[slots] >out("name", slots)
        print field[5] >out("annual.units", slots)
        most[slots] = 0
    }
    slot = slot_of[name]
    value = field[7] == "" ? "NaN" : field[7]
    note_value("annual", slot, value)
    print field[6], value >out("annual", slot)
}

file == 2 && field[2] == run {
    name = field[4] SUBSEP field[5]
    if (!(name in slot_of))
        next
    slot = slot_of[name]
    if (seen[slot, field[3], field[6]]++)
        fail("two slots of the input are named " shown[slot])
    print field[6], field[8] >out("missing", slot)
    if (field[8] + 0 > most[slot])
        most[slot] = field[8] + 0
}

file == 3 && field[6] != "" {
    name = field[3] SUBSEP field[4]
    slot = name in slot_of ? slot_of[name] : 0
    if (slot != held_slot)
        start_slot(slot)
    if (slot == 0)
        next
    if (!in_input[slot]++)
        print field[5] >out("units", slot)
    value = field[7] == "" ? "NaN" : field[7]
    note_value("input", slot, value)
    write_held(value)
    held_time = field[6]
    held = value
}

END {
    if (failed)
        exit 1
    start_slot(0)
    for (slot = 1; slot <= slots; ++slot) {
        if (!in_input[slot])
            fail(shown[slot] " is not in the input")
        print_range("annual", slot)
        print_range("input", slot)
        print values["annual", slot] + 0, values["input", slot] + 0, most[slot] >(folder "/slots")
    }
}
