// Gives the headers that the test programs find precompiled a target to be made by.
