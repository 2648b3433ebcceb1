% Prints all that is in MATLAB files: a line for each array, with its size, its class and its values.
1;

function text = shown(value)
  if ischar(value)
    text = ["'" value "'"];
  elseif isinteger(value)
    text = strjoin(strsplit(strtrim(disp(value(:)'))), " ");  % printf would go through double
  else
    text = strtrim(sprintf("%.17g ", value));
  end
end

function show(path, value)
  if isstruct(value)
    for name = fieldnames(value)'
      show([path "." name{1}], value.(name{1}));
    end
    return;
  end
  printf("%s %dx%d %s", path(2:end), size(value), class(value));
  if ! iscell(value) && (ischar(value) || ! isempty(value))
    printf(" %s", shown(value));
  end
  for i = 1:numel(value) * iscell(value)
    printf(" {%dx%d %s %s}", size(value{i}), class(value{i}), shown(value{i}));
  end
  printf("\n");
end

show("", load(argv(){1}));
