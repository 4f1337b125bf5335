# Reads a table of htstool export with R alone: names such as NA as they are, times in UTC.
#     source("read.R")
#     table <- read_table("flows.csv")
#     aggregate(value ~ object, table, mean, subset = slot == "Flow")
# R's reading of numbers may be one unit in the last of 53 bits off, for a few of 100,000.
read_table <- function(path) {
    names <- c(object = "character", slot = "character", units = "character")
    table <- read.csv(path, na.strings = "", check.names = FALSE, encoding = "UTF-8", colClasses = names)
    transform(table, time = as.POSIXct(time, format = "%Y-%m-%dT%H:%M:%S", tz = "UTC"))
}
