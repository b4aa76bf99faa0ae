#!/bin/sh
# CannotStart.sh CHECKER PLUGIN
# Where no process can be started for a check, the check has failed and says why.
set -u
expect_not_run()
{
    what=$1
    shift
    output=$("$@" --check requests.out-of-range 2>&1)
    status=$?
    case "$status $output" in
        "1 "*"FAIL  requests.out-of-range"*"not run: "*"0 passed, 1 failed, 0 skipped"*) ;;
        *)
            echo "$what: exit $status, expected 1 and one failed check that was not run:"
            echo "$output"
            exit 1
            ;;
    esac
}
# Descriptors 0 to 3 remain: enough to load libraries one after another, one too few for a pipe.
exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-
expect_not_run "too few files" prlimit --nofile=4 "$@"
# A sanitized checker cannot start what looks for leaks, either.
export ASAN_OPTIONS=detect_leaks=0
# The limit on processes does not hold for the administrator, so the checker runs as another user. That one cannot
# reach a build below the administrator's own folder.
if [ "$(id -u)" != 0 ]; then
    expect_not_run "too few processes" prlimit --nproc=1 "$@"
elif setpriv --reuid=65534 --clear-groups test -x "$1"; then
    expect_not_run "too few processes" setpriv --reuid=65534 --clear-groups prlimit --nproc=1 "$@"
else
    echo "too few processes: not tried, because user 65534 cannot reach $1"
fi
