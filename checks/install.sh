# holds: public headers stand alone; the installed library is found and used by other projects, the examples
# packages: g++ cmake ninja-build ccache libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev python3-pydicom libjpeg62-turbo-dev pkg-config
# minutes: 20

. checks/common.sh

tree=build/install
file=$(foreign_dicom_file)

build release all all_verify_interface_header_sets
rm -rf "$tree"
cmake --install build/release --prefix "$tree/first"
# An installed tree may be moved: packagers do, and so do people.
mv "$tree/first" "$tree/vantor"

cp -r examples "$tree/examples"  # where no header of this repository is found by chance
cmake -S "$tree/examples" -B "$tree/user" -G Ninja -DCMAKE_PREFIX_PATH="$PWD/$tree/vantor" --no-warn-unused-cli
cmake --build "$tree/user"

# shows TEXT PROGRAM ARGUMENT...
shows() {
    "${@:2}" | tee "$tree/shown.txt"
    grep -q "$1" "$tree/shown.txt" || fail "$2 does not show $1"
}

export XDG_CONFIG_HOME=$PWD/$tree/config
medium=$(dpkg -L python3-pydicom | grep '/dicomdirtests/DICOMDIR$')
series=1.3.6.1.4.1.5962.1.1.0.0.0.1196527414.5534.0.10
mkdir "$tree/copies"
shows '^CompressedSamples^CT1 *$' "$tree/user/patient_name" "$file"
shows "^Doe, Archibald .*  $series$" "$tree/user/list_directory" "$medium"
shows 'Diameter: 3' "$tree/user/read_report" "$(dpkg -L python3-pydicom | grep '/test-SR\.dcm$')"
shows '^1\.2\.840\.' "$tree/user/save_anonymous" "$medium" "$series" "$tree/copies"
shows '^Anonymous .*1 objects' "$tree/user/list_directory" "$tree/copies"
if grep -rq Archibald "$tree/copies"; then fail "the copy tells who the patient is"; fi

export PKG_CONFIG_PATH=$PWD/$tree/vantor/lib/pkgconfig:$PWD/$tree/vantor/lib/x86_64-linux-gnu/pkgconfig
flags=$(pkg-config --cflags --libs vantor)
g++ "$tree/examples/patient_name.cpp" $flags -Wl,-rpath,"$(pkg-config --variable=libdir vantor)" -o "$tree/by_pkg_config"
shows '^CompressedSamples^CT1 *$' "$tree/by_pkg_config" "$file"

"$tree/vantor/bin/vantor" info "$file" | tee "$tree/info.txt"
grep -q 'CompressedSamples^CT1' "$tree/info.txt" || fail "the installed program does not show the name"
if "$tree/vantor/bin/vantor" info "$tree/none.dcm"; then fail "a file that is not there is no failure"; fi
