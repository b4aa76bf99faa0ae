/* Sections that tests look for in their own program, and the notes that lead to them in memory. */
    .macro resource name
    .section .note.kestrel.resource, "a", %note
    .balign 4
    .long 8, 4f - 3f, 1
    .asciz "Kestrel"
3:  .long 1f - 3b, 2f - 1f
    .asciz "\name"
4:  .balign 4
    .section .ksres.\name, "a", %progbits
1:
    .endm

    resource TEST.1
    .byte 0, 1, 2, 0xFF, 0
2:
    resource TEST.3
2:

    /* No resources: another owner's note, another type's, and a section without a note. */
    .section .note.other, "a", %note
    .balign 4
    .long 8, 15, 1
    .asciz "Another"
    .long 0, 1
    .asciz "TEST.2"
    .balign 4
    .long 8, 15, 2
    .asciz "Kestrel"
    .long 0, 1
    .asciz "TEST.2"
    .balign 4
    .section .ksres.TEST.2, "a", %progbits
    .byte 1
    .section .note.GNU-stack, "", %progbits
