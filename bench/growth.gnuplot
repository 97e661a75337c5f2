# docs/performance-growth.svg from docs/performance-growth.tsv.
set terminal svg size 1000,560 font "sans,12" background "white"
set output "docs/performance-growth.svg"
set datafile separator "\t"
set multiplot layout 2,4 title "Milliseconds against each size, the others as in W1"
set key off
set grid lc rgb "#dddddd"
set yrange [0:*]
set xrange [0:*]
set border 3
set format x "%.0s%c"
set xtics nomirror autofreq
set ytics nomirror
do for [size in "voxels volumes order intervals 'null draws' surrogates references"] {
  set title size
  set xtics nomirror autofreq
  if (size eq "volumes") { set xtics nomirror 0,300 }
  set format x (size eq "volumes" ? "%g" : "%.0s%c")
  plot "< grep '^".size."\t' docs/performance-growth.tsv" using 2:3 with linespoints lw 2 pt 7 ps 0.6 lc rgb "#2a6099"
}
unset multiplot
