"""The error by which the generator refuses a table."""


class SheetError(Exception):
    pass
