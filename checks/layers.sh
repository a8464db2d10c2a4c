# holds: files include downwards and in no circle; the operating system stays inside platform/
# packages: python3
# minutes: 2

. checks/common.sh

/usr/bin/python3 checks/layers_test.py
/usr/bin/python3 checks/layers.py
