# usage: gnuplot -c plot.gnuplot FOLDER PICTURE TITLE RUN
# FOLDER holds what plot-gnuplot gets from htstool: input.csv and annual.csv, with one column for
# each slot after run, trace and time, and counts.csv with one row for each slot and year.

input = ARG1 . '/input.csv'
annual = ARG1 . '/annual.csv'
counts = ARG1 . '/counts.csv'
run = int(ARG4)

set datafile separator comma
instant(c) = timecolumn(c, '%Y-%m-%dT%H:%M:%S')
valueAt(c) = strcol(c) eq '' ? NaN : column(c)
year = 365.25 * 24 * 3600

# The headers are "Object.Slot [units]".
name(header) = header[1:strstrt(header, ' [') - 1]
units(header) = header[strstrt(header, ' [') + 2:strlen(header) - 1]

# "1000 m3 summed over the year" is longer than a panel is high.
wrapped(text) = strstrt(text, ' summed') == 0 ? text : \
    text[1:strstrt(text, ' summed') - 1] . "\nsummed over\nthe year"

stats input every ::::0 using 0 nooutput
inputs = int(STATS_columns) - 3
array inputHeader[inputs]
do for [i=1:inputs] { stats input every ::::0 using (inputHeader[i] = strcol(i + 3), 0) nooutput }

stats annual every ::::0 using 0 nooutput
slots = int(STATS_columns) - 3
array header[slots]
do for [i=1:slots] { stats annual every ::::0 using (header[i] = strcol(i + 3), 0) nooutput }

stats input skip 1 using (instant(3)) nooutput
first = STATS_min
last = STATS_max

set terminal pngcairo noenhanced size 900, 160 * (slots + 1) + 40 font 'DejaVu Sans,9' \
    background 'white'
set output ARG2
set multiplot layout slots + 1, 1 title ARG3 . ': input (blue) and annual result (orange)' . "\n" \
    font ',12'

set lmargin 12
set rmargin 16
set tmargin 2
set bmargin 1.5
set xrange [first - year / 10 : last + year / 10]
set xtics time format '%Y'
set grid xtics
set border 3
set tics nomirror
unset errorbars
unset key

# The slots: an empty value is a gap in the line, the value of a year a level line over that year.
do for [i=1:slots] {
    k = 0
    do for [j=1:inputs] { if (name(inputHeader[j]) eq name(header[i])) { k = j } }
    if (k == 0) { print name(header[i]) . ' is not in the input'; exit status 1 }
    set title name(header[i])
    set ylabel units(inputHeader[k])
    if (units(header[i]) eq units(inputHeader[k])) {
        set link y2
        set offsets 0, 0, graph 0.08, graph 0.08
    } else {
        # The sum of a year is far larger than what it sums.
        set y2tics textcolor rgb '#D55E00'
        set y2label wrapped(units(header[i])) textcolor rgb '#D55E00'
    }
    plot input skip 1 using (instant(3)):(valueAt(k + 3)) with lines linecolor rgb '#56B4E9', \
         annual skip 1 using (instant(3) - year / 2):(valueAt(i + 3)):(year / 2) axes x1y2 \
             with xerrorbars pointtype 0 linewidth 2 linecolor rgb '#D55E00'
    unset link y2
    unset offsets
    unset y2tics
    unset y2label
}

# The missing values: a bar for each year of each slot that has any, side by side.
missing(i) = column(2) == run && strcol(4) . '.' . strcol(5) eq name(header[i]) ? column(8) : NaN
shown = '' # numbers of those slots
most = 1
do for [i=1:slots] {
    stats counts skip 1 using (missing(i)) nooutput
    if (STATS_max > 0) { shown = shown . ' ' . i }
    if (STATS_max > most) { most = STATS_max }
}
set ylabel 'per year'
set yrange [0 : 1.7 * most] # room for the key
set key top right horizontal
set style fill solid noborder
colours = '#0072B2 #E69F00 #009E73 #CC79A7 #999999'
if (shown eq '') {
    set title 'No missing values'
    plot NaN notitle
} else {
    set title 'Missing values'
    slot(b) = int(word(shown, b))
    width = 0.8 * year / words(shown)
    left = 0.9 * year # of a year's first bar, before the end of the year
    plot for [b=1:words(shown)] counts skip 1 \
        using (instant(6) - left + (b - 0.5) * width):(missing(slot(b))):(width) with boxes \
        linecolor rgb word(colours, (b - 1) % 5 + 1) title name(header[slot(b)])
}
unset multiplot
