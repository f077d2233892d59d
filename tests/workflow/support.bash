# shellcheck shell=bash disable=SC2154
# What the tests of the workflows share. $vort and $root are the program and the sources, $work is
# where they are.

export XDG_CACHE_HOME=$work/cache  # Snakemake's

fail() {
    echo "FAILED: $*"
    exit 1
}

# The tables of the example by `vort run`, in DIR.
run_whole() {  # DIR PERMUTATIONS
    "$vort" run --bfile "$root/examples/study" --permutations "$2" --out "$1" --quiet
}

same_results() {  # DIR EXPECTED-DIR
    local name
    for name in P_value.txt Final_result.txt markers.tsv permutations.tsv quantiles.tsv model.json \
        report.html; do
        cmp "$1/$name" "$2/$name" || fail "$name is not that of a whole run"
    done
    [ -s "$1/run.log" ] || fail "there is no log"
}

wait_for() {  # SECONDS WHAT COMMAND...: until the command ends with 0
    local end=$((SECONDS + $1))
    until "${@:3}"; do
        [ "$SECONDS" -lt "$end" ] || fail "waited $1 seconds for $2"
        sleep 0.2
    done
}

# Makes $work/told: the program, which notes its calls, and in place of task model 3 does what
# HINDRANCE is, while there is a file `hinder`.
make_told() {  # HINDRANCE
    cat >"$work/told" <<SCRIPT
#!/usr/bin/env bash
echo "\$1 \$2 \${4:-}" | sed -E 's/^(plan|merge) .*/\1/' >>"$work/calls"
if [ -e "$work/hinder" ] && [ "\$2 \${4:-}" = "model 3" ]; then $1; fi
exec "$vort" "\$@"
SCRIPT
    chmod +x "$work/told"
}

calls_are() {  # EXPECTED...: those since the last time, in any order
    diff <([ $# -eq 0 ] || printf '%s\n' "$@" | sort) <(grep -v '^status' "$work/calls" | sort) ||
        fail "these were not the calls expected"
    : >"$work/calls"
}
