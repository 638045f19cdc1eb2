// The backlight of the virtual board: what the firmware of a laptop says of its screen, so that
// Debian's own driver (video.ko) makes /sys/class/backlight/acpi_video0 of it, with levels of 0 to
// 100 percent. Each level that is set goes to an I/O port, where the host listens.
// Names and packages: ACPI 6.4, appendix B, "Video Extensions".
DefinitionBlock ("", "SSDT", 2, "PANEL", "BACKLIT", 1)
{
    External (\_SB.PCI0.S80, DeviceObj)

    Scope (\_SB.PCI0.S80)
    {
        OperationRegion (HOST, SystemIO, 0x0900, 1)
        Field (HOST, ByteAcc, NoLock, Preserve) { OUTB, 8 }
        Name (LEVL, 100)
        Method (_DOS, 1) {}
        Method (_DOD, 0) { Return (Package () { 0x80000400 }) }

        Device (LCD)
        {
            Name (_ADR, 0x0400)
            // The first two are the levels on mains and on battery.
            Name (_BCL, Package () { 100, 100,
                0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19,
                20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39,
                40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59,
                60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73, 74, 75, 76, 77, 78, 79,
                80, 81, 82, 83, 84, 85, 86, 87, 88, 89, 90, 91, 92, 93, 94, 95, 96, 97, 98, 99,
                100
            })
            Method (_BCM, 1)
            {
                LEVL = Arg0
                OUTB = Arg0
            }
            Method (_BQC, 0) { Return (LEVL) }
        }
    }
}
