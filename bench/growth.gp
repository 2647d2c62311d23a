# The picture of what a record costs as it grows: gnuplot -e "data='growth.tsv'; picture='growth.svg'" growth.gp
set terminal svg size 800,620 font "sans-serif,14" background "#ffffff"
set output picture
set datafile separator "\t"
set title "Processor time to show one record"
set xlabel "octets captured"
set ylabel "microseconds"
set logscale x 2
set logscale y 10
set xrange [64:8192.1] # a last tick that is the end gets lost in rounding
set xtics (64, 128, 256, 512, 1024, 2048, 4096, 8192)
set grid
# Names that do not fit inside are all left out; below there is room for each on a line of its own.
set key outside below left Left reverse maxcols 1 height 1 font ",12"
name(i) = i == 1 ? "Ethernet, TCP: decoded, first lines in hexadecimal" : \
          i == 2 ? "the same, whole in hexadecimal (-!)" : \
          i == 3 ? "SNMP, 32 levels deep, whole in hexadecimal" : \
          i == 4 ? "Q.931, causes from the end of their table, whole in hexadecimal" : \
                   "NetWare, seven servers from the end of the largest table, whole in hexadecimal"
series(i) = i == 1 ? "first lines" : i == 2 ? "whole frame (-!)" : i == 3 ? "deepest nesting (-!)" : \
            i == 4 ? "most look-ups (-!)" : "servers, largest table (-!)"
plot for [i=1:5] data using (strcol(1) eq series(i) ? $2 : NaN):3 with linespoints pointtype 7 linewidth 2 title name(i)
