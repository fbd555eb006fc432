#!/usr/bin/env bash
# Mutation probe for the test suite: applies, one at a time, the small deliberate faults listed in
# scripts/mutants.txt, rebuilds incrementally, runs the test programs through CTest and prints,
# for each fault, the test programs that failed because of it. A tool for engineers; CI and
# scripts/test.sh do not run it. The source tree is restored after every fault, also on Ctrl-C.
#
#   scripts/mutants.sh [-B BUILD_DIR] [-t SECONDS] [-j JOBS] [--no-baseline] [--list] [ID...]
#
#   -B DIR         a configured build folder (default: build/ of the repository)
#   -t SECONDS     CTest's timeout for a test that declares none of its own (default 300)
#   -j JOBS        tests run at once (default 1)
#   --no-baseline  skip the first run on the untouched tree (its failures are otherwise not
#                  counted as catches)
#   --list         print the faults (and whether each snippet still occurs once) and stop
#   ID...          only these faults, in the file's order (default: all)
#
# Stop it with Ctrl-C or kill -TERM: the fault is taken out again first. (A script started with
# "&" from another script ignores SIGINT, and nothing can trap that; use SIGTERM there.)
# Do not commit while it runs: the file under test holds a fault.
set -uo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
data="$root/scripts/mutants.txt"
build="$root/build"
test_timeout=300
jobs=1
baseline=1
list=0
ids=()

usage() { sed -n '7,19p' "$0" | sed 's/^# \{0,1\}//'; exit "${1:-0}"; }

while [ $# -gt 0 ]; do
  case "$1" in
    -B) build=$(realpath -m "${2:?-B needs a folder}"); shift 2 ;;
    -t) test_timeout=${2:?-t needs seconds}; shift 2 ;;
    -j) jobs=${2:?-j needs a number}; shift 2 ;;
    --no-baseline) baseline=0; shift ;;
    --list) list=1; shift ;;
    -h|--help) usage 0 ;;
    -*) echo "mutants.sh: unknown option $1" >&2; usage 2 ;;
    *) ids+=("$1"); shift ;;
  esac
done

# The data file's reader and the one place that edits sources. Subcommands:
#   ids [ID...]        the ids to run, in file order (unknown ids are an error)
#   get ID FIELD       one field of a fault
#   count ID           how often its (first misplaced) snippet occurs: 1 when all fit
#   apply ID           makes its edits in its file; exit 3 and the count when a snippet is
#                      not found exactly once
read_faults() {
  python3 - "$data" "$root" "$@" <<'PY'
import sys

data, root, cmd, *args = sys.argv[1:]

def parse(path):
    faults, cur, lines = [], None, open(path, encoding="utf-8").read().split("\n")
    i = 0
    while i < len(lines):
        line = lines[i]
        i += 1
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith("[") and line.rstrip().endswith("]"):
            cur = {"id": line.strip()[1:-1]}
            faults.append(cur)
            continue
        key, sep, value = line.partition(":")
        if cur is None or not sep or key not in ("file", "what", "find", "replace"):
            sys.exit(f"mutants.txt:{i}: expected [id], file:, what:, find: or replace:")
        value = value[1:] if value.startswith(" ") else value
        if value == "<<<":
            block = []
            while i < len(lines) and lines[i] != ">>>":
                block.append(lines[i])
                i += 1
            if i == len(lines):
                sys.exit(f"mutants.txt: block of {cur['id']}.{key} has no closing >>>")
            i += 1
            value = "\n".join(block)
        edits = cur.setdefault("edits", [])
        if key == "find":
            edits.append([value, None])
        elif key == "replace":
            if not edits or edits[-1][1] is not None:
                sys.exit(f"mutants.txt:{i}: replace: of {cur['id']} without its find:")
            edits[-1][1] = value
        else:
            cur[key] = value
    seen = set()
    for f in faults:
        missing = [k for k in ("file", "what", "edits") if k not in f]
        if missing or f["id"] in seen or any(r is None for _, r in f.get("edits", [])):
            sys.exit(f"mutants.txt: fault {f['id']} is repeated, lacks {', '.join(missing) or 'a replace:'}")
        seen.add(f["id"])
    return faults

faults = parse(data)
by_id = {f["id"]: f for f in faults}

if cmd == "ids":
    unknown = [a for a in args if a not in by_id]
    if unknown:
        sys.exit("unknown fault id: " + ", ".join(unknown))
    for f in faults:
        if not args or f["id"] in args:
            print(f["id"])
elif cmd == "get":
    print(by_id[args[0]][args[1]])
elif cmd in ("apply", "count"):
    f = by_id[args[0]]
    path = f"{root}/{f['file']}"
    try:
        with open(path, encoding="utf-8", newline="") as fh:
            text = fh.read()
    except OSError:
        print(0)
        sys.exit(3)
    # Every snippet must occur once, each looked for after the edits before it.
    for find, replace in f["edits"]:
        n = text.count(find)
        if n != 1:
            break
        text = text.replace(find, replace)
    if cmd == "count":
        print(n)
    elif n != 1:
        print(n)
        sys.exit(3)
    else:
        with open(path, "w", encoding="utf-8", newline="") as fh:
            fh.write(text)
PY
}

selected=$(read_faults ids "${ids[@]}") || exit 2
mapfile -t run_ids <<<"$selected"
[ -n "$selected" ] || { echo "mutants.sh: no faults to run" >&2; exit 2; }

if [ "$list" = 1 ]; then
  for id in "${run_ids[@]}"; do
    n=$(read_faults count "$id")
    [ "$n" = 1 ] && state=ok || state="stale($n)"
    printf '%-30s %-9s %-42s %s\n' "$id" "$state" "$(read_faults get "$id" file)" "$(read_faults get "$id" what)"
  done
  exit 0
fi

[ -f "$build/CTestTestfile.cmake" ] || { echo "mutants.sh: $build is not a configured build folder" >&2; exit 2; }

tree_before=$(git -C "$root" diff | sha1sum)
logs="$build/mutants-logs"
mkdir -p "$logs"
backup=$(mktemp)
current=""   # the source file that holds a fault right now

restore() {
  if [ -n "$current" ]; then
    # A plain copy gives the file a new time, so the next build compiles the good text again.
    cp "$backup" "$current"
    cmp -s "$backup" "$current" || echo "mutants.sh: could not restore $current (its text is in $backup)" >&2
    current=""
  fi
}

caught=0; missed=0; stale=0; broken=0; missed_ids=(); other_ids=(); start_all=$SECONDS

summary() {
  local ran=$((caught + missed))
  echo
  echo "caught $caught of $ran faults that built ($missed missed, $broken did not build or test, $stale stale);" \
       "$(( (SECONDS - start_all) / 60 )) min $(( (SECONDS - start_all) % 60 )) s"
  [ "$missed" -gt 0 ] && echo "missed: ${missed_ids[*]}"
  [ "${#other_ids[@]}" -gt 0 ] && echo "stale, not built or not tested: ${other_ids[*]}"
  return 0
}

# Builds and test runs go in their own process group and are waited for with `wait`, which a
# signal interrupts at once (a foreground command would hold the trap back until it ended).
child=""
run_child() {
  local log=$1 rc
  shift
  setsid "$@" >"$log" 2>&1 &
  child=$!
  wait "$child"
  rc=$?
  child=""
  return "$rc"
}
stop_child() { [ -z "$child" ] || { kill -TERM -- "-$child" 2>/dev/null; wait "$child" 2>/dev/null; }; }

trap 'stop_child; restore; rm -f "$backup"' EXIT
trap 'stop_child; restore; echo; echo "interrupted"; summary; exit 130' INT TERM

build_tree() { run_child "$1" cmake --build "$build" -j2; }

# Runs CTest and prints the failed programs, one per line, "name" or "name (Timeout)" etc.
failed_tests() {
  run_child "$1" env QT_QPA_PLATFORM=offscreen ctest --test-dir "$build" -j"$jobs" --timeout "$test_timeout"
  sed -n '/The following tests FAILED:/,$p' "$1" \
    | sed -nE 's/^[[:space:]]+[0-9]+ - ([^ ]+) \((.*)\)[[:space:]]*$/\1 \2/p' \
    | awk '{ if ($2 == "Failed") print $1; else { n = $1; $1 = ""; print n " (" substr($0, 2) ")" } }'
}

declare -A expected_failure=()
if [ "$baseline" = 1 ]; then
  echo "baseline: building and testing the untouched tree"
  if ! build_tree "$logs/baseline-build.log"; then
    echo "mutants.sh: the untouched tree does not build (see $logs/baseline-build.log)" >&2
    exit 1
  fi
  t0=$SECONDS
  failed_tests "$logs/baseline-test.log" >"$logs/failed"
  mapfile -t base_failed <"$logs/failed"
  for t in "${base_failed[@]}"; do expected_failure["${t%% *}"]=1; done
  if [ "${#base_failed[@]}" -gt 0 ]; then
    echo "baseline: already failing, not counted as catches: ${base_failed[*]}"
  fi
  echo "baseline: tests took $((SECONDS - t0)) s"
  echo
fi

for id in "${run_ids[@]}"; do
  file=$(read_faults get "$id" file)
  t0=$SECONDS
  cp "$root/$file" "$backup" 2>/dev/null || : >"$backup"
  current="$root/$file"
  if ! count=$(read_faults apply "$id"); then
    current=""
    line="stale (snippet found $count times in $file)"
    stale=$((stale + 1))
    other_ids+=("$id")
  elif ! build_tree "$logs/$id-build.log"; then
    restore
    line="does not build"
    broken=$((broken + 1))
    other_ids+=("$id")
  else
    failed_tests "$logs/$id-test.log" >"$logs/failed"
    mapfile -t failed <"$logs/failed"
    restore
    catchers=()
    for t in "${failed[@]}"; do
      [ -n "${expected_failure[${t%% *}]:-}" ] || catchers+=("$t")
    done
    if ! grep -q "tests passed, .* failed out of" "$logs/$id-test.log"; then
      line="the tests did not run (see $logs/$id-test.log)"
      broken=$((broken + 1))
      other_ids+=("$id")
    elif [ "${#catchers[@]}" -gt 0 ]; then
      line="caught by: $(IFS=,; echo "${catchers[*]}" | sed 's/,/, /g')"
      caught=$((caught + 1))
    else
      line="MISSED"
      missed=$((missed + 1))
      missed_ids+=("$id")
    fi
  fi
  printf '%-30s %s  [%d s]\n' "$id" "$line" $((SECONDS - t0))
done

# Leaves the build folder matching the restored tree.
build_tree "$logs/final-build.log" || echo "mutants.sh: the final rebuild failed (see $logs/final-build.log)" >&2
if [ "$(git -C "$root" diff | sha1sum)" != "$tree_before" ]; then
  echo "mutants.sh: warning: git diff differs from before the run" >&2
fi
summary
