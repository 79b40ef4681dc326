# Usage: gnuplot -c script/plot.gp CSV SVG TITLE
#
# Draws what `ktmanip simulate --csv` wrote: the positions of the joints, and the energies, over
# time. It takes names without commas or quotation marks.
csv = ARG1
set terminal svg size 900,800 dynamic background "white" font "sans-serif,14"
set output ARG2
set datafile separator comma
header = system(sprintf("head -n 1 '%s' | tr ' ,' '_ '", csv))
name(i) = word(header, i)
label(i) = system(sprintf("echo '%s' | sed 's/\\.q$//; s/_/ /g'", name(i)))
isJoint(i) = strlen(name(i)) > 2 && substr(name(i), strlen(name(i)) - 1, strlen(name(i))) eq ".q"
joints = ""
do for [i = 1:words(header)] {
  if (isJoint(i)) { joints = joints . sprintf("%d ", i) }
  if (name(i) eq "kineticEnergy") { kinetic = i }
  if (name(i) eq "potentialEnergy") { potential = i }
}

set linetype 5 linecolor rgb "#c0392b"  # a pale yellow by default
set multiplot layout 2,1 title ARG3
set lmargin 12
set rmargin 20
set key outside right top noenhanced
set grid
set xlabel "time, s"
set ylabel "joint position, rad or m"
plot for [n = 1:words(joints)] csv skip 1 using 1:int(word(joints, n)) with lines linewidth 2 \
  title label(int(word(joints, n)))
set ylabel "energy, J"
plot csv skip 1 using 1:kinetic with lines linewidth 2 title "kinetic", \
  "" skip 1 using 1:potential with lines linewidth 2 title "potential", \
  "" skip 1 using 1:(column(kinetic) + column(potential)) with lines linewidth 2 title "total"
unset multiplot
