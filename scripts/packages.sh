# Sourced by the other scripts: install_packages KIND… installs the packages of these kinds that are missing.

install_packages() {
  local kinds missing=()
  kinds=$(IFS='|'; echo "$*")
  while read -r package; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done < <(awk -v kinds="^($kinds)\$" '$1 ~ kinds {print $2}' "$(dirname "${BASH_SOURCE[0]}")/packages.txt")
  [ ${#missing[@]} -eq 0 ] && return

  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "Installing ${missing[*]}" >&2
  "${as_root[@]}" apt-get update -qq >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}
