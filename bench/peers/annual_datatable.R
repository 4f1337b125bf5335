# Annual values of a wide table of daily series, with data.table.
# usage: Rscript annual_datatable.R INPUT.csv CONTROL.txt END_MONTH RESULT.csv
library(data.table)

arguments <- commandArgs(trailingOnly = TRUE)
end_month <- as.integer(arguments[3])

control <- fread(arguments[2], sep = ":", header = FALSE, col.names = c("slot", "method"))

daily <- fread(arguments[1], drop = c("run", "trace"))
setnames(daily, sub(" \\[.*", "", names(daily)))
day <- as.IDate(daily$time) - 1L # the time is the instant that ends the day
daily[, `:=`(year = year(day) + (month(day) > end_month), time = NULL)]

of <- function(wanted) control[method == wanted, slot]

annual <- cbind(
    daily[, lapply(.SD, sum, na.rm = TRUE), by = year, .SDcols = of("SumNaN")],
    daily[, lapply(.SD, mean), by = year, .SDcols = of("Average")][, !"year"],
    daily[, lapply(.SD, max, na.rm = TRUE), by = year, .SDcols = of("MaxNaN")][, !"year"],
    daily[, lapply(.SD, min, na.rm = TRUE), by = year, .SDcols = of("MinNaN")][, !"year"]
)

# The first day after each year.
after <- function(year) {
    as.IDate(sprintf("%d-%d-1", year + (end_month == 12L), end_month %% 12L + 1L))
}
size <- daily[, .N, by = year]$N
annual <- annual[size == as.integer(after(year) - after(year - 1L))]

fwrite(melt(annual, id.vars = "year", variable.name = "slot")[, .(slot, year, value)], arguments[4])
