/* The dialog's layout in its two dialects, each text one resource, byte for byte as the file has it. */
    .section .ksres.LUMEN.ImporterTesselPrefs, "a", @progbits
    .incbin "ImporterTesselPrefs.lumen"

    .section .ksres.SABLE.ImporterTesselPrefs, "a", @progbits
    .incbin "ImporterTesselPrefs.sable"

    .section .note.GNU-stack, "", @progbits
