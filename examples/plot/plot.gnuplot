# usage: gnuplot -c plot.gnuplot PICTURE TITLE
# The current folder holds the files that columns.awk makes.

instant(c) = timecolumn(c, '%Y-%m-%dT%H:%M:%S')
year = 365.25 * 24 * 3600

stats 'slots' using 0 nooutput
slots = int(STATS_records)
array annualValues[slots]
array inputValues[slots]
array missing[slots]
stats 'slots' using (annualValues[$0 + 1] = $1, inputValues[$0 + 1] = $2, missing[$0 + 1] = $3) nooutput
content(file, i) = system(sprintf('cat %s.%d', file, i))

# "1000 m3 summed over the year" is longer than a panel is high.
wrapped(text) = strstrt(text, ' summed') == 0 ? text : \
    text[1:strstrt(text, ' summed') - 1] . "\nsummed over\nthe year"

stats 'input.1' using (instant(1)) nooutput
first = STATS_min
last = STATS_max

height = 160 * (slots + 1) + 40
if (ARG1 eq 'picture.png') {
    set terminal pngcairo noenhanced size 900, height font 'DejaVu Sans,9' background 'white'
}
if (ARG1 eq 'picture.svg') {
    set terminal svg noenhanced size 900, height font 'DejaVu Sans,12' background 'white'
}
if (ARG1 eq 'picture.pdf') {
    set terminal pdfcairo noenhanced size 9, height / 100.0 font 'DejaVu Sans,9' background 'white'
}
set output ARG1
set multiplot layout slots + 1, 1 title ARG2 . ': input (blue) and annual result (orange)' . "\n" \
    font ',12'

set lmargin 12
set rmargin 16
set tmargin 2
set bmargin 1.5
set xrange [first - year / 10 : last + year / 10]
set grid xtics
set border 3
set tics nomirror
unset errorbars
unset key

# Whole years, each once, and at most eight.
firstYear = int(strftime('%Y', first))
lastYear = int(strftime('%Y', last))
step = 1
do for [larger in '2 5 10 20 50 100 200 500 1000'] {
    if ((lastYear - firstYear) / step > 8) { step = int(larger) }
}
set xtics ()
do for [y=step * ((firstYear + step - 1) / step) : lastYear : step] {
    set xtics add (sprintf('%d', y) strptime('%Y', sprintf('%04d', y)))
}

# The slots: a missing value is a gap in the line, the value of a year a level line over that year.
do for [i=1:slots] {
    set title content('name', i)
    set ylabel content('units', i)
    isLinked = content('units', i) eq content('annual.units', i) && inputValues[i] > 0
    if (isLinked) {
        set link y2
        set offsets 0, 0, graph 0.08, graph 0.08
    } else {
        # The sum of a year is far larger than what it sums.
        set y2tics textcolor rgb '#D55E00'
        set y2label wrapped(content('annual.units', i)) textcolor rgb '#D55E00'
    }
    eval 'set yrange ' . content('input.range', i)
    if (!isLinked) { eval 'set y2range ' . content('annual.range', i) }
    # A file without a value would end it all.
    curves = inputValues[i] == 0 ? 'NaN, ' : sprintf("\
        'input.%d' using (instant(1)):2 with lines linecolor rgb '#56B4E9', \
        '' using (instant(1)):3 with points pointtype 7 pointsize 0.8 linecolor rgb '#56B4E9', ", i)
    curves = curves . (annualValues[i] == 0 ? 'NaN' : sprintf("\
        'annual.%d' using (instant(1) - year / 2):2:(year / 2) axes x1y2 \
             with xerrorbars pointtype 0 linewidth 2 linecolor rgb '#D55E00'", i))
    eval 'plot ' . curves
    unset link y2
    unset offsets
    unset y2tics
    unset y2label
}

# The missing values: a bar for each year of each slot that has any, side by side.
shown = '' # numbers of those slots
most = 1
do for [i=1:slots] {
    if (missing[i] > 0) { shown = shown . ' ' . i }
    if (missing[i] > most) { most = missing[i] }
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
    plot for [b=1:words(shown)] sprintf('missing.%d', slot(b)) \
        using (instant(1) - left + (b - 0.5) * width):2:(width) with boxes \
        linecolor rgb word(colours, (b - 1) % 5 + 1) title content('name', slot(b))
}
unset multiplot
