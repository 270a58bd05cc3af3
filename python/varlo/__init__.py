"""varlo, the ray tracer, from Python: scenes made by programs, and the tools around the program."""

__version__ = "0.1.0"
