// Empty: the target that owns the tests' precompiled headers needs a source file.
