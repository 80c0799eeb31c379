#!/usr/bin/env bash
# Usage: tools/compare-tex.sh [--write]
# Compares the extents of our formulas with TeX's, in display and in text style at 20 points. Names each formula whose
# width or total height is more than 2% and more than 0.5 points off, with what the table says about it, and ends with the
# count. --write puts what TeX measured into the table, tests/MathRender/data/tex-extents.tsv, whose columns are a
# formula, its width, ascent and descent in display style, the same in text style, and why we differ on purpose.
# Needs LuaLaTeX (packages texlive-luatex, texlive-latex-extra and lmodern). BUILD is the build folder (build/dev).
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
table=tests/MathRender/data/tex-extents.tsv
metrics=${BUILD:-build/dev}/tools/math-metrics/quillo-math-metrics
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The environments are those of plain TeX without struts, with columns and rows as far apart as ours. \nulldelimiterspace
# is 0, since a fraction of ours is as wide as its parts. Fonts for text are the math font, as names are set in that.
# Scripts of a box drop by constants of the scripts' font (TeXbook, appendix G, rule 18a): 0.25 and 0.2 of its size. On its
# own LuaTeX takes them from the font of the box, where superscripts are 1.5 points lower and subscripts 1.2 lower.
cat >"$work/measure.tex" <<'END'
\documentclass{article}
\usepackage{amsmath,unicode-math}
\setmathfont{latinmodern-math.otf}
\setmathrm{latinmodern-math.otf}
\setmainfont{latinmodern-math.otf}
\DeclareMathSizes{20}{20}{14}{10}
\makeatletter
\def\rows#1{\vcenter\bgroup\baselineskip=#1pt \lineskip=\dimexpr#1pt-22pt \lineskiplimit=\dimexpr#1pt-24pt
  \let\\\cr \halign\bgroup}
\def\endrows{\crcr\egroup\egroup}
\renewenvironment{matrix}{\rows{24}\hfil$##$\hfil&&\quad\hfil$##$\hfil\cr}{\endrows}
\def\fenced#1#2#3{\renewenvironment{#1}{\left#2\begin{matrix}}{\end{matrix}\right#3}}
\fenced{pmatrix}() \fenced{bmatrix}[] \fenced{Bmatrix}\{\} \fenced{vmatrix}|| \fenced{Vmatrix}\|\|
\renewenvironment{cases}{\left\{\rows{24}$##$\hfil&\quad$##$\hfil\cr}{\endrows\right.}
\renewenvironment{aligned}{\rows{30}\hfil$\displaystyle##$&$\displaystyle{}##$\hfil\cr}{\endrows}
\renewenvironment{gather}{\rows{30}\hfil$\displaystyle##$\hfil\cr}{\endrows}
\renewenvironment{eqnarray}{\rows{30}\hfil$\displaystyle##$\quad&\hfil$\displaystyle##$\hfil&\quad$\displaystyle##$\hfil\cr}
  {\endrows}
\def\extent{\strip@pt\wd0 \space\strip@pt\ht0 \space\strip@pt\dp0}
\def\measure#1{%
  \setbox0\hbox{$\displaystyle{#1}$}\immediate\write\measures{\extent}%
  \setbox0\hbox{$\textstyle{#1}$}\immediate\write\measures{\extent}}
\makeatother
\newwrite\measures
\begin{document}
\let\mathrm\symup \let\mathbf\symbf \let\mathit\symit \let\mathsf\symsf \let\mathtt\symtt
\let\mathcal\symcal \let\mathfrak\symfrak \let\mathbb\symbb \let\bm\symbfit
\fontsize{20}{24}\selectfont
\delimiterfactor=901 \delimitershortfall=5pt \nulldelimiterspace=0pt
\setbox0\hbox{$x$}% loads the fonts, which sets what follows
\def\drop#1#2#3{\Umathsupshiftdrop#1=#2pt \Umathsubshiftdrop#1=#3pt }
\drop\displaystyle{3.5}{2.8} \drop\crampeddisplaystyle{3.5}{2.8} \drop\textstyle{3.5}{2.8} \drop\crampedtextstyle{3.5}{2.8}
\drop\scriptstyle{2.5}2 \drop\crampedscriptstyle{2.5}2 \drop\scriptscriptstyle{2.5}2 \drop\crampedscriptscriptstyle{2.5}2
\immediate\openout\measures=measures.txt
END
awk -F'\t' '{print "\\measure{" $1 "}"}' "$table" >>"$work/measure.tex"
printf '\\immediate\\closeout\\measures\n\\end{document}\n' >>"$work/measure.tex"
if ! (cd "$work" && lualatex -interaction=nonstopmode -halt-on-error measure.tex >log); then
    grep -A3 '^!' "$work/log" >&2
    exit 1
fi

# Two lines a formula: display, then text.
awk -F'\t' '{
    source = $1
    gsub(/[\\"]/, "\\\\&", source)
    for (i = 0; i < 2; ++i)
        printf "{\"latex\": \"%s\", \"style\": \"%s\", \"size\": 20}\n", source, i ? "text" : "display"
}' "$table" | "$metrics" >"$work/ours.json"
sed -E 's/.*"ascent":([^,}]*).*"descent":([^,}]*).*"width":([^,}]*).*/\3 \1 \2/' "$work/ours.json" >"$work/ours.txt"

paste -d'\t' "$work/measures.txt" "$work/ours.txt" | awk -F'\t' -v table="$table" -v written="$work/table.tsv" '
    function apart(one, other) { return one > other ? one - other : other - one }
    function isClose(one, other) { return apart(one, other) <= 0.5 || apart(one, other) <= 0.02 * other }
    {
        split($1, tex, " ")
        split($2, ours, " ")
        isText = NR % 2 == 0
        if (!isText) {
            getline row <table
            split(row, cells, "\t")
            line = cells[1]
        }
        for (i = 1; i <= 3; ++i)
            line = line "\t" tex[i] + 0
        if (isText)
            print line (cells[8] != "" ? "\t" cells[8] : "") >written
        ++all
        if (isClose(ours[1], tex[1]) && isClose(ours[2] + ours[3], tex[2] + tex[3]))
            ++close_ones
        else
            printf "%-8s%s\n        width %.2f, TeX %.2f; height %.2f, TeX %.2f\n        %s\n", isText ? "text" : "display",
                   cells[1], ours[1], tex[1], ours[2] + ours[3], tex[2] + tex[3], cells[8]
    }
    END { printf "%d of %d within 2%% or 0.5 points\n", close_ones, all }'
[[ ${1:-} != --write ]] || cp "$work/table.tsv" "$table"
