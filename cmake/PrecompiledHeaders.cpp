// Empty: a target that owns precompiled headers needs a source file.
