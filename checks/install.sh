# holds: public headers stand alone; the installed library is found and used by another project
# packages: g++ cmake ninja-build ccache libgtest-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev python3-pydicom libjpeg62-turbo-dev
# minutes: 20

. checks/common.sh

tree=build/install
file=$(foreign_dicom_file)

build release all all_verify_interface_header_sets
rm -rf "$tree"
cmake --install build/release --prefix "$tree/first"
# An installed tree may be moved: packagers do, and so do people.
mv "$tree/first" "$tree/vantor"

cmake -S tests/install -B "$tree/user" -G Ninja -DCMAKE_PREFIX_PATH="$PWD/$tree/vantor" --no-warn-unused-cli
cmake --build "$tree/user"
"$tree/user/patient_name" "$file" | tee "$tree/patient_name.txt"
grep -qx 'CompressedSamples^CT1 *' "$tree/patient_name.txt" || fail "the user's program shows another name"

"$tree/vantor/bin/vantor" info "$file" | tee "$tree/info.txt"
grep -q 'CompressedSamples^CT1' "$tree/info.txt" || fail "the installed program does not show the name"
if "$tree/vantor/bin/vantor" info "$tree/none.dcm"; then fail "a file that is not there is no failure"; fi
