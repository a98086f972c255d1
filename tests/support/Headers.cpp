// Nothing: the target of this source has the precompiled header that all test programs use.
