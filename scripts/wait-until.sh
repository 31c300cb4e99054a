# Sourced by the session scripts: wait_until <seconds> <command...> polls the command until it
# succeeds (0) or the seconds run out (1), instead of sleeping a fixed time.
wait_until() {
  local deadline=$((SECONDS + $1)); shift
  until "$@" >/dev/null 2>&1; do
    if ((SECONDS >= deadline)); then return 1; fi
    sleep 0.1
  done
}
