;;; -- a program of empty statements
;  -- expect exit: 0
