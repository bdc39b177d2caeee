// The bundle's resource archive, in the section that the component runtime searches. The section is
// loaded and marked as retained, so that neither the linker nor strip removes it, as they would
// remove unreferenced data or an archive after the end of the file.
asm(".pushsection .us_resources, \"aR\", %progbits\n"
    ".incbin \"" SOCA_RESOURCE_ARCHIVE
    "\"\n"
    ".popsection\n");
