// The bundle's resource archive, in the section in which the component runtime looks for it. The
// section is loaded and marked to be retained: neither the linker, which sees no use of it, nor
// strip drops it, as they would an archive behind the end of the file.
asm(".pushsection .us_resources, \"aR\", %progbits\n"
    ".incbin \"" SOCA_RESOURCE_ARCHIVE
    "\"\n"
    ".popsection\n");
