-- The starting templates. Each section is a file of its template's folder.
insert into template(tname, ttype, description, header, "pre-image", image1, image2, "post-image", footer)
select 'Thumbnail Gallery', 'C', 'Thumbnails three across with their titles',
  cast(readfile('templates/gallery/header.htm') as text),
  cast(readfile('templates/gallery/pre-image.htm') as text),
  cast(readfile('templates/gallery/image1.htm') as text),
  cast(readfile('templates/gallery/image2.htm') as text),
  cast(readfile('templates/gallery/post-image.htm') as text),
  cast(readfile('templates/gallery/footer.htm') as text);
