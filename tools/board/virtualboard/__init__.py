"""The virtual board: a panel's image of Debian's packages and ours, and the machine in QEMU that runs it."""
