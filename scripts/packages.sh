# Sourced by the other scripts: installs Debian packages that are missing.

packages_build="g++ cmake ninja-build pkg-config googletest libgtest-dev libpng-dev libjpeg-dev libcli11-dev ffmpeg
  python3 scdoc"
packages_bench="libbenchmark-dev libyuv-dev libswscale-dev libavutil-dev libzimg-dev libx264-dev libssl-dev
  libopencv-core-dev libopencv-imgproc-dev"
packages_android="clang-19 lld-19 llvm-19 libclang-rt-19-dev musl-dev linux-libc-dev"
# What the tests need beside the build, in the quick check too.
packages_test="gcc python3-cffi python3-numpy"
packages_check="$packages_test clang-19 lld-19 llvm-19 libclang-rt-19-dev binutils util-linux
  g++-aarch64-linux-gnu g++-riscv64-linux-gnu qemu-user meson musl-tools doxygen abigail-tools $packages_android"

need_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    echo "Missing, and neither root nor sudo to install them: apt-get install ${missing[*]}" >&2
    return 1
  fi
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
