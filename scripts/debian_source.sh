# shellcheck shell=bash
# Source packages of the Debian release that this machine runs, for libraries that are built for Windows. Source it after
# lib.sh. Lists and settings stay below build/debian-sources: the machine's own are not touched.
debian_sources=${build:?source lib.sh first}/debian-sources

# apt with everything it writes below that folder. The word for the sandbox keeps root from becoming a user who may not
# look into the folder.
private_apt() {
  apt-get -q -o Dir::Etc::sourcelist="$debian_sources/sources.list" -o Dir::Etc::sourceparts=- \
    -o Dir::State::lists="$debian_sources/lists" -o Dir::Cache="$debian_sources/cache" -o APT::Sandbox::User=root \
    -o Acquire::Languages=none -o Acquire::Retries=3 "$@"
}

# The machine's mirrors of Debian itself, as lines that offer sources.
list_sources() {
  local codename
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # shellcheck disable=SC2016 # the fields are apt's
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
    awk -v codename="$codename" '$3 == "main" && ($2 == codename || $2 == codename "-security") &&
      !seen[$0]++ { print "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]", $0 }'
}

# fetch_source WORK PACKAGE VERSION: unpacks that version with Debian's patches into WORK/source/unpacked: the newest
# revision, or the release's own where a mirror does not hold the newest.
fetch_source() {
  local work=$1 package=$2 version=$3 codename
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  mkdir -p "$debian_sources"/{lists,cache/archives}/partial "$work/source"
  list_sources >"$debian_sources/sources.list"
  private_apt update
  cd -- "$work/source" || return
  private_apt source --only-source "$package" || private_apt source --only-source "$package/$codename"
  mv -- "$package-$version"*/ unpacked || die "no source package $package $version; the mirrors offer: $(echo "$package"-*)"
}
