/* A section that tests look for in their own program. */
    .section .ksres.TEST.1, "", @progbits
    .byte 0, 1, 2, 0xFF, 0
    .section .note.GNU-stack, "", @progbits
