#!/usr/bin/env bash
# Usage: tools/compare-replies.sh [--write] [--sheets FOLDER]
# Compares formulas as models write them, shown as replies show them, with what LuaLaTeX makes of them: in display style at
# 20 points. Names each whose width is more than 8% and more than 2 points off, with what the table says about it, and ends
# with the count. --write puts LaTeX's widths into the table, tests/Views/Markdown/Dialect/replies.tsv, whose columns are
# a formula, its width, and why ours differs; the width is "source" for a formula that a reply shows as its source, and "-"
# for one that LaTeX can't read. --sheets draws ours beside LaTeX's into FOLDER, twenty formulas a picture.
# Needs LuaLaTeX (packages texlive-luatex, texlive-latex-extra and lmodern), for pictures pdftoppm and ImageMagick. BUILD is
# the build folder (build/dev).
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
table=tests/Views/Markdown/Dialect/replies.tsv
metrics=$PWD/${BUILD:-build/dev}/tools/math-metrics/quillo-math-metrics
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
write=
sheets=
while [[ $# -gt 0 ]]; do
    case $1 in
        --write) write=1 ;;
        --sheets) sheets=$2 && shift ;;
        *) sed -n '2,3p' "$0" >&2 && exit 2 ;;
    esac
    shift
done

# Environments of their own lines become those that stand within a formula. A "%" is what models mean by it.
cat >"$work/measure.tex" <<'END'
\documentclass{article}
\usepackage{mathtools,braket,xcolor,unicode-math}
\setmathfont{latinmodern-math.otf}
\setmainfont{latinmodern-math.otf}
\setsansfont{latinmodern-math.otf}
\DeclareMathSizes{20}{20}{14}{10}
\makeatletter
\def\become#1#2{\renewenvironment{#1}{\begin{#2}}{\end{#2}}}
\become{align}{aligned} \become{align*}{aligned} \become{gather}{gathered} \become{gather*}{gathered}
\become{split}{aligned} \become{multline}{gathered} \become{multline*}{gathered}
\renewenvironment{equation}{}{} \renewenvironment{equation*}{}{}
\renewcommand\tag[1]{\qquad(\mathrm{#1})} \renewcommand\label[1]{} \let\nonumber\relax \let\notag\relax
\newwrite\measures
\newcount\formula
\newcommand\measure[1]{\advance\formula1
  \setbox0\hbox{$\displaystyle#1$}\immediate\write\measures{\the\formula\space\strip@pt\wd0}%
  \pagewidth=\dimexpr\wd0+20pt \pageheight=\dimexpr\ht0+\dp0+20pt
  \shipout\vbox{\vskip-1in\vskip10pt\hbox{\hskip-1in\hskip10pt\box0}}}
\makeatother
\begin{document}
\let\square\mdlgwhtsquare \let\blacksquare\mdlgblksquare \let\mathbf\symbf \let\mathsf\symsf \let\bm\symbfit \let\boldsymbol\symbfit
\fontsize{20}{24}\selectfont
\arraycolsep=10pt \fboxsep=6pt% those of a font of 10 points, twice
\immediate\openout\measures=measures.txt
\catcode`\%=12 \catcode`\#=12
END
first=$(wc -l <"$work/measure.tex")
awk -F'\t' '{print "\\measure{" ($2 == "source" ? "" : $1) "}"}' "$table" >>"$work/measure.tex"
printf '\\immediate\\closeout\\measures\n\\end{document}\n' >>"$work/measure.tex"
(cd "$work" && lualatex -interaction=nonstopmode measure.tex >log) || true

# The numbers of formulas with an error, then the widths of all by number.
sed -nE 's/^l\.([0-9]+) .*/\1/p' "$work/log" | awk -v first="$first" '{print $1 - first, "-"}' >"$work/tex.txt"
awk 'FILENAME == ARGV[1] {bad[$1]; next} !($1 in bad)' "$work/tex.txt" "$work/measures.txt" >"$work/good.txt"
cat "$work/good.txt" >>"$work/tex.txt"

awk -F'\t' -v folder="$work" '{
    source = $1
    gsub(/[\\"]/, "\\\\&", source)
    printf "{\"latex\": \"%s\", \"reply\": true, \"size\": 20, \"image\": \"%s/ours-%d.png\"}\n", source, folder, NR
}' "$table" | "$metrics" >"$work/ours.json"
sed -E 's/.*"error".*/source/; s/.*"width":([^,}]*).*/\1/' "$work/ours.json" >"$work/ours.txt"

awk -F'\t' -v OFS='\t' -v ours="$work/ours.txt" -v tex="$work/tex.txt" -v written="$work/table.tsv" '
    function apart(one, other) { return one > other ? one - other : other - one }
    BEGIN {
        while ((getline line <tex) > 0) {
            split(line, cells, " ")
            widths[cells[1]] = cells[2]
        }
    }
    {
        getline own <ours
        width = $2 == "source" ? $2 : NR in widths ? widths[NR] : "-"
        print $1, width ($3 != "" ? "\t" $3 : "") >written
        isShown = width != "source" && own != "source"
        if (isShown ? width == "-" || apart(own, width) <= 2 || apart(own, width) <= 0.08 * width : own == width)
            ++close_ones
        else
            printf "%s\n        width %s, LaTeX %s  %s\n", $1, own, width, $3
    }
    END { printf "%d of %d as LaTeX has them\n", close_ones, NR }' "$table"
[[ -z $write ]] || cp "$work/table.tsv" "$table"

[[ -n $sheets ]] || exit 0
mkdir -p "$sheets"
(cd "$work" && pdftoppm -r 100 -png measure.pdf tex)
count=$(wc -l <"$table")
for ((start = 1; start <= count; start += 20)); do
    tiles=()
    for ((i = start; i < start + 20 && i <= count; ++i)); do
        theirs=$(printf '%s/tex-%0*d.png' "$work" "${#count}" "$i")
        [[ -f $work/ours-$i.png ]] || convert -size 40x20 xc:orange "$work/ours-$i.png"
        [[ -f $theirs ]] || theirs=xc:gray
        tiles+=(\( -size 40x20 "$work/ours-$i.png" -resize 50% \) "$theirs")
    done
    montage "${tiles[@]}" -tile 4x -geometry '460x110>+4+4' -background '#dde' \
        "$sheets/$(printf 'sheet-%03d.png' "$start")"
done
